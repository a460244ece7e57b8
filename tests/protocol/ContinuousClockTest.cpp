#include <ContinuousClock.h>

#include <gtest/gtest.h>

#include <chrono>

namespace {

constexpr int hour = 3'600'000; // milliseconds
constexpr int day = 24 * hour;

struct ContinuousClockTest : testing::Test {
    int timeOfDay = 0;
    qint64 steadyTime = 0; // read always, of use only where a span of time is long
    sbus::ContinuousClock clockFrom(int first) {
        timeOfDay = first;
        return sbus::ContinuousClock([this] { return timeOfDay; }, [this] { return steadyTime; });
    }
};

} // namespace

TEST_F(ContinuousClockTest, NoTimeHasPassedAtFirstWhateverTheTimeOfDayIs) {
    EXPECT_EQ(clockFrom(0).passed(), 0);
    EXPECT_EQ(clockFrom(day - 1).passed(), 0);
}

TEST_F(ContinuousClockTest, TellsWhatHasPassedSinceItWasLastAsked) {
    sbus::ContinuousClock clock = clockFrom(1'000);
    timeOfDay = 1'001;
    EXPECT_EQ(clock.passed(), 1);
    EXPECT_EQ(clock.passed(), 0);
    timeOfDay = 61'000;
    EXPECT_EQ(clock.passed(), 59'999);
}

TEST_F(ContinuousClockTest, GoesOnWhenTheTimeOfDayStartsAgain) {
    sbus::ContinuousClock clock = clockFrom(day - 1'000);
    timeOfDay = day - 1;
    EXPECT_EQ(clock.passed(), 999);
    timeOfDay = 0;
    EXPECT_EQ(clock.passed(), 1);
    timeOfDay = 500;
    EXPECT_EQ(clock.passed(), 500);
}

TEST_F(ContinuousClockTest, GoesOnOverManyDays) {
    constexpr int quarter = day / 4;
    sbus::ContinuousClock clock = clockFrom(0);
    for (int quarters = 1; quarters <= 120; ++quarters) {
        timeOfDay = quarters % 4 * quarter;
        ASSERT_EQ(clock.passed(), quarter) << quarters;
    }
}

TEST_F(ContinuousClockTest, NoTimePassesForAClockThatIsSetBack) {
    sbus::ContinuousClock clock = clockFrom(10 * hour);
    for (const int back : {1, hour, day / 2 - hour}) {
        timeOfDay -= back;
        EXPECT_EQ(clock.passed(), 0) << back;
        timeOfDay += 100;
        EXPECT_EQ(clock.passed(), 100) << back;
        timeOfDay = 23 * hour;
        clock.passed();
    }
}

// An hour before midnight is 23 hours after the midnight before it.
TEST_F(ContinuousClockTest, NoTimePassesForAClockThatIsSetBackAcrossMidnight) {
    sbus::ContinuousClock clock = clockFrom(5'000);
    timeOfDay = day - hour;
    EXPECT_EQ(clock.passed(), 0);
    timeOfDay += 100;
    EXPECT_EQ(clock.passed(), 100);
}

TEST_F(ContinuousClockTest, AClockThatIsSetForwardMakesTimeJump) {
    sbus::ContinuousClock clock = clockFrom(5'000);
    timeOfDay += hour;
    EXPECT_EQ(clock.passed(), hour);
}

TEST_F(ContinuousClockTest, HalfADayIsTheLongestStepForward) {
    sbus::ContinuousClock clock = clockFrom(0);
    timeOfDay = day / 2;
    EXPECT_EQ(clock.passed(), day / 2);
    timeOfDay = 0;
    EXPECT_EQ(clock.passed(), 0);
    timeOfDay = day / 2 + 1;
    EXPECT_EQ(clock.passed(), 0);
    timeOfDay = 0;
    EXPECT_EQ(clock.passed(), day / 2 - 1);
}

// Nobody reads it while a line is down.
TEST_F(ContinuousClockTest, TheSteadyClockCountsSpansOfMoreThanHalfADay) {
    sbus::ContinuousClock clock = clockFrom(hour);
    timeOfDay = 14 * hour;
    steadyTime = 13 * hour;
    EXPECT_EQ(clock.passed(), 13 * hour);
    timeOfDay = 17 * hour;
    steadyTime = 40 * hour;
    EXPECT_EQ(clock.passed(), 27 * hour);
    timeOfDay += 100;
    steadyTime += 200;
    EXPECT_EQ(clock.passed(), 100);
}

TEST_F(ContinuousClockTest, TheSteadyClockCountsFromHalfADayAndAMillisecond) {
    sbus::ContinuousClock clock = clockFrom(0);
    steadyTime = day / 2;
    EXPECT_EQ(clock.passed(), 0);
    steadyTime += day / 2 + 1;
    EXPECT_EQ(clock.passed(), day / 2 + 1);
}

// More milliseconds than 32 bits hold.
TEST_F(ContinuousClockTest, AHundredDaysWithoutAReadingAreTold) {
    sbus::ContinuousClock clock = clockFrom(0);
    steadyTime = qint64{100} * day;
    EXPECT_EQ(clock.passed(), qint64{100} * day);
}

TEST_F(ContinuousClockTest, TheTimeOfDayCountsFromMidnightInUtc) {
    using std::chrono::milliseconds;
    const auto now = [] {
        const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
        return static_cast<int>(std::chrono::duration_cast<milliseconds>(sinceEpoch).count() % day);
    };
    // Once more where midnight has come in between.
    int before = day, told = 0, after = 0;
    while (after < before) {
        before = now();
        told = sbus::ContinuousClock::utcTimeOfDay();
        after = now();
    }
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
}

TEST_F(ContinuousClockTest, TheSteadyTimeIsInMilliseconds) {
    const auto now = [] {
        const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
    };
    const qint64 before = now();
    const qint64 told = sbus::ContinuousClock::steadyMilliseconds();
    EXPECT_GE(told, before);
    EXPECT_LE(told, now());
}
