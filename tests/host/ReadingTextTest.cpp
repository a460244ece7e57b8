#include "values/ReadingText.h"
#include "services/console/ProgressBar.h"

#include <gtest/gtest.h>

namespace host {
namespace {

Point floatRegister() {
    Point point;
    point.address = {'R', 30};
    point.isFloat = true;
    return point;
}

constexpr qint64 noonMs = 1'795'262'400'125; // 2026-11-21T12:00:00.125Z
const PointState good{1.1, noonMs, noonMs, PointQuality::Good};
const PointState bad{0, 0, 0, PointQuality::Bad};

} // namespace

TEST(ReadingText, IsAddressAndValue) {
    Point point;
    point.address = {'R', 10};
    EXPECT_EQ(readingAsText(point, 123), "R10 = 123");
    EXPECT_EQ(readingAsText(floatRegister(), static_cast<double>(1.1F)), "R30:float = 1.1");
}

TEST(ReadingText, HoldsTimeAndQualityInJson) {
    EXPECT_EQ(readingAsJson(floatRegister(), good),
              R"({"address":"R30:float","value":1.1,"time":"2026-11-21T12:00:00.125Z","quality":"good"})");
    EXPECT_EQ(readingAsJson(floatRegister(), bad),
              R"({"address":"R30:float","value":null,"time":null,"quality":"bad"})");
}

TEST(ReadingText, HoldsTimeAndQualityInCsv) {
    EXPECT_STREQ(readingCsvHeader, "address,value,time,quality");
    EXPECT_EQ(readingAsCsv(floatRegister(), good), "R30:float,1.1,2026-11-21T12:00:00.125Z,good");
    EXPECT_EQ(readingAsCsv(floatRegister(), bad), "R30:float,,,bad");
}

TEST(ProgressText, FillsWithTheWork) {
    EXPECT_EQ(progressText(0, 5000), "[                              ]   0 %  0 of 5000");
    EXPECT_EQ(progressText(2500, 5000), "[###############               ]  50 %  2500 of 5000");
    EXPECT_EQ(progressText(5000, 5000), "[##############################] 100 %  5000 of 5000");
}

} // namespace host
