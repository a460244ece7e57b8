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
