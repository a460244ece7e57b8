#include "site/Duration.h"

#include <gtest/gtest.h>

using host::durationFault;
using host::parseDuration;
using namespace std::chrono_literals;

TEST(Duration, CarriesItsUnit) {
    EXPECT_EQ(parseDuration("500ms"), 500ms);
    EXPECT_EQ(parseDuration("1s"), 1s);
    EXPECT_EQ(parseDuration("2m"), 2min);
    EXPECT_EQ(parseDuration("24h"), 24h);
    EXPECT_EQ(parseDuration("0s"), 0s);
}

TEST(Duration, IsNothingWithoutUnitOrNumber) {
    for (const char* const text : {"", "1", "s", "1 s", "1.5s", "-1s", "1S", "1d", "s1", "1sms"})
        EXPECT_FALSE(parseDuration(text)) << text;
}

TEST(Duration, IsNothingBeyondWhatTheDriverCanCount) {
    EXPECT_EQ(parseDuration("2147483647ms"), 2147483647ms);
    EXPECT_FALSE(parseDuration("2147483648ms"));
    EXPECT_FALSE(parseDuration("4294967296ms"));
    EXPECT_FALSE(parseDuration("4294967295h"));
}

TEST(Duration, OfACommandLineIsAbove0) {
    EXPECT_EQ(durationFault("1ms"), "");
    for (const char* const text : {"0s", "0ms", "10", ""})
        EXPECT_EQ(durationFault(text), "\"" + std::string(text) +
                                           "\" is no time above 0; write a number and its unit: 500ms, 10s, "
                                           "2m, 1h");
}

TEST(TimeSpan, CountsDaysToo) {
    EXPECT_EQ(host::parseTimeSpan("400d"), 400 * 24h);
    EXPECT_EQ(host::parseTimeSpan("90s"), 90s);
    EXPECT_EQ(host::parseTimeSpan("1000000d"), 1'000'000 * 24h);
    for (const char* const text : {"", "d", "1.5d", "-1d", "1w", "1000001d", "4294967296d", "4294967295d"})
        EXPECT_FALSE(host::parseTimeSpan(text)) << text;
}

TEST(TimeSpan, OfACommandLineIsAbove0) {
    EXPECT_EQ(host::timeSpanFault("1d"), "");
    EXPECT_EQ(host::timeSpanFault("0d"),
              "\"0d\" is no time above 0; write a number and its unit: 10s, 5m, 1h, 30d");
}
