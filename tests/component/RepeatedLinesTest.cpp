#include "RepeatedLines.h"

#include <gtest/gtest.h>

namespace {

const RepeatedLines::Clock::time_point start{};

} // namespace

TEST(RepeatedLines, DifferentLinesAreWritten) {
    RepeatedLines lines;
    for (const char* line : {"a", "b", "a"}) {
        const auto verdict = lines.examine(1, line, start);
        EXPECT_FALSE(verdict.repeated);
        EXPECT_FALSE(verdict.report);
    }
}

TEST(RepeatedLines, RepeatsAreReportedBeforeTheNextOtherLine) {
    RepeatedLines lines;
    lines.examine(1, "a", start);
    for (int repeat = 0; repeat < 3; ++repeat)
        EXPECT_TRUE(lines.examine(1, "a", start).repeated);
    const auto verdict = lines.examine(1, "b", start);
    EXPECT_FALSE(verdict.repeated);
    EXPECT_EQ(verdict.report, "a (repeated 3 times)");
}

TEST(RepeatedLines, OneRepeatIsReportedInTheSingular) {
    RepeatedLines lines;
    lines.examine(1, "a", start);
    lines.examine(1, "a", start);
    EXPECT_EQ(lines.examine(1, "b", start).report, "a (repeated 1 time)");
}

TEST(RepeatedLines, SourcesThatTakeTurnsEachRepeatThemselves) {
    RepeatedLines lines;
    lines.examine(1, "rtu 1", start);
    lines.examine(2, "rtu 2", start);
    EXPECT_TRUE(lines.examine(1, "rtu 1", start).repeated);
    EXPECT_TRUE(lines.examine(2, "rtu 2", start).repeated);
}

TEST(RepeatedLines, LineThatNeverEndsShowsItsCountEachInterval) {
    RepeatedLines lines;
    lines.examine(1, "a", start);
    EXPECT_FALSE(lines.examine(1, "a", start + std::chrono::seconds(59)).report);
    const auto verdict = lines.examine(1, "a", start + RepeatedLines::reportInterval);
    EXPECT_TRUE(verdict.repeated);
    EXPECT_EQ(verdict.report, "a (repeated 2 times)");
    EXPECT_FALSE(lines.examine(1, "a", start + std::chrono::seconds(61)).report);
}

TEST(RepeatedLines, OpenCountsCanBeTakenOnce) {
    RepeatedLines lines;
    lines.examine(1, "a", start);
    lines.examine(1, "a", start);
    lines.examine(2, "b", start);
    EXPECT_EQ(lines.takeReports(start), (std::map<int, std::string>{{1, "a (repeated 1 time)"}}));
    EXPECT_TRUE(lines.takeReports(start).empty());
    EXPECT_FALSE(lines.examine(1, "c", start).report);
}
