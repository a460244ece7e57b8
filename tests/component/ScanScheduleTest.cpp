#include "ScanSchedule.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

namespace {

using Poll = std::pair<int, int>; // RTU id, kind

std::vector<Poll> dueAt(ScanSchedule& schedule, qint64 now) {
    std::vector<Poll> polls;
    for (const ScanSchedule::Poll& poll : schedule.due(now))
        polls.emplace_back(poll.rtuId, poll.kind);
    return polls;
}

// One RTU that is asked for its status alone; of three kinds it is the second, first due after a third.
ScanSchedule::Rtu statusOnly(int id, int period) {
    return {id, {0, period, 0}};
}

} // namespace

TEST(ScanSchedule, FirstPollsAreSpreadEvenlyOverThePeriod) {
    ScanSchedule schedule({{1, {900, 900, 900}}, {2, {900, 900, 900}}, {3, {900, 900, 900}}}, 5000);
    std::map<qint64, Poll> firstDue;
    for (qint64 now = 5000; now < 5900; ++now)
        for (const Poll& poll : dueAt(schedule, now))
            EXPECT_TRUE(firstDue.emplace(now - 5000, poll).second) << "two polls at " << now;
    const std::map<qint64, Poll> expected{{0, {1, 0}},   {100, {1, 1}}, {200, {1, 2}},
                                          {300, {2, 0}}, {400, {2, 1}}, {500, {2, 2}},
                                          {600, {3, 0}}, {700, {3, 1}}, {800, {3, 2}}};
    EXPECT_EQ(firstDue, expected);
}

TEST(ScanSchedule, EachKindHasItsOwnPeriod) {
    ScanSchedule schedule({{4, {6000, 100, 250}}}, 0);
    std::map<int, int> asked;
    for (qint64 now = 0; now < 6000; ++now)
        for (const Poll& poll : dueAt(schedule, now))
            ++asked[poll.second];
    EXPECT_EQ(asked, (std::map<int, int>{{0, 1}, {1, 60}, {2, 24}}));
    EXPECT_EQ(schedule.takeOverruns(), 0U);
}

TEST(ScanSchedule, NothingIsDueTwiceForOneDueTime) {
    ScanSchedule schedule({statusOnly(1, 1000)}, 0);
    EXPECT_EQ(dueAt(schedule, 333), (std::vector<Poll>{{1, 1}}));
    EXPECT_TRUE(dueAt(schedule, 333).empty());
    EXPECT_TRUE(dueAt(schedule, 1332).empty());
    EXPECT_EQ(dueAt(schedule, 1333), (std::vector<Poll>{{1, 1}}));
}

TEST(ScanSchedule, LateScanIsAskedOnceAndItsMissedPeriodsAreOverruns) {
    ScanSchedule schedule({statusOnly(1, 1000)}, 0);
    dueAt(schedule, 333);
    EXPECT_EQ(dueAt(schedule, 5500), (std::vector<Poll>{{1, 1}})); // due at 1333, 2333, 3333, 4333, 5333
    EXPECT_EQ(schedule.takeOverruns(), 4U);
    EXPECT_EQ(schedule.takeOverruns(), 0U);
}

TEST(ScanSchedule, LateByLessThanAPeriodIsNoOverrun) {
    ScanSchedule schedule({statusOnly(1, 1000)}, 0);
    EXPECT_EQ(dueAt(schedule, 1332).size(), 1U);
    EXPECT_EQ(schedule.takeOverruns(), 0U);
}

TEST(ScanSchedule, LatenessDoesNotShiftTheGrid) {
    ScanSchedule schedule({statusOnly(1, 1000)}, 0);
    EXPECT_EQ(dueAt(schedule, 900).size(), 1U); // was due at 333
    EXPECT_TRUE(dueAt(schedule, 1332).empty());
    EXPECT_EQ(dueAt(schedule, 1333).size(), 1U);
}

TEST(ScanSchedule, LongestOverdueComesFirst) {
    ScanSchedule schedule({{1, {0, 600, 0}}, {2, {0, 300, 0}}}, 0); // due at 100 and at 200
    dueAt(schedule, 250);                                           // then at 700 and at 500
    EXPECT_EQ(dueAt(schedule, 750), (std::vector<Poll>{{2, 1}, {1, 1}}));
}

TEST(ScanSchedule, PeriodOfZeroOrLessIsNeverDue) {
    ScanSchedule schedule({{1, {0, -5, 0}}}, 0);
    EXPECT_TRUE(dueAt(schedule, 1'000'000).empty());
}

TEST(ScanSchedule, WithoutRtusNothingIsDue) {
    ScanSchedule schedule({}, 0);
    EXPECT_TRUE(dueAt(schedule, 1'000'000).empty());
}

TEST(ScanSchedule, SkippedTimeIsNeitherAskedForNorAnOverrun) {
    ScanSchedule schedule({statusOnly(1, 1000)}, 0);
    schedule.skipTo(7333);
    EXPECT_TRUE(dueAt(schedule, 7333).empty());
    EXPECT_EQ(dueAt(schedule, 8333).size(), 1U);
    EXPECT_EQ(schedule.takeOverruns(), 0U);
}

TEST(ScanSchedule, KeepsItsGridForYears) {
    constexpr qint64 tenYears = qint64{10} * 365 * 24 * 3600 * 1000;
    ScanSchedule schedule({statusOnly(1, 1000)}, 0);
    EXPECT_EQ(dueAt(schedule, tenYears).size(), 1U);
    EXPECT_TRUE(dueAt(schedule, tenYears + 332).empty());
    EXPECT_EQ(dueAt(schedule, tenYears + 333).size(), 1U);
}
