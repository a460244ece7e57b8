#include <ContinuousClock.h>

#include <gtest/gtest.h>

namespace {

constexpr int hour = 3'600'000; // milliseconds
constexpr int day = 24 * hour;

struct ContinuousClockTest : testing::Test {
    int reading = 0;
    qint64 steady = 0; // read only where a span of time is long
    sbus::ContinuousClock clockFrom(int first) {
        reading = first;
        return sbus::ContinuousClock([this] { return reading; }, [this] { return steady; });
    }
};

} // namespace

TEST_F(ContinuousClockTest, StartsFromZeroWhateverTheReadingIs) {
    EXPECT_EQ(clockFrom(0).elapsed(), 0u);
    EXPECT_EQ(clockFrom(day - 1).elapsed(), 0u);
}

TEST_F(ContinuousClockTest, CountsWithTheReading) {
    sbus::ContinuousClock clock = clockFrom(1'000);
    reading = 1'001;
    EXPECT_EQ(clock.elapsed(), 1u);
    EXPECT_EQ(clock.elapsed(), 1u);
    reading = 61'000;
    EXPECT_EQ(clock.elapsed(), 60'000u);
}

TEST_F(ContinuousClockTest, GoesOnWhenTheReadingStartsAgainAfterADay) {
    sbus::ContinuousClock clock = clockFrom(day - 1'000);
    reading = day - 1;
    EXPECT_EQ(clock.elapsed(), 999u);
    reading = 0;
    EXPECT_EQ(clock.elapsed(), 1'000u);
    reading = 500;
    EXPECT_EQ(clock.elapsed(), 1'500u);
}

TEST_F(ContinuousClockTest, GoesOnOverManyDays) {
    constexpr int quarter = day / 4;
    sbus::ContinuousClock clock = clockFrom(0);
    for (quint32 quarters = 1; quarters <= 120; ++quarters) {
        reading = static_cast<int>(quarters % 4) * quarter;
        ASSERT_EQ(clock.elapsed(), quarters * quarter) << quarters;
    }
}

TEST_F(ContinuousClockTest, NeverGoesBackWhenSomebodySetsTheClockBack) {
    sbus::ContinuousClock clock = clockFrom(10 * 3'600'000);
    reading += 5'000;
    const quint32 before = clock.elapsed();
    reading -= hour;
    EXPECT_GE(clock.elapsed(), before);
}

// The count began a moment ago, so an hour earlier is 23 hours after its beginning by the circle of a day.
TEST_F(ContinuousClockTest, StandsStillWhenTheClockIsSetBackToBeforeItsStart) {
    sbus::ContinuousClock clock = clockFrom(0);
    reading = 5'000;
    EXPECT_EQ(clock.elapsed(), 5'000u);
    reading += day - 3'600'000;
    EXPECT_EQ(clock.elapsed(), 5'000u);
    reading += 100;
    EXPECT_EQ(clock.elapsed(), 5'100u);
}

// Nobody reads it while a line is down.
TEST_F(ContinuousClockTest, CountsSpansOfMoreThanHalfADay) {
    sbus::ContinuousClock clock = clockFrom(hour);
    reading = 14 * hour;
    steady = 13 * hour;
    EXPECT_EQ(clock.elapsed(), 13u * hour);
    reading = 17 * hour;
    steady = 40 * hour;
    EXPECT_EQ(clock.elapsed(), 40u * hour);
    reading += 100;
    steady += 100;
    EXPECT_EQ(clock.elapsed(), 40u * hour + 100);
}

TEST_F(ContinuousClockTest, CountsFromALaterOriginOnceItIsMoved) {
    sbus::ContinuousClock clock = clockFrom(1'000);
    reading = 5'000;
    EXPECT_EQ(clock.elapsed(), 4'000u);
    clock.moveOriginBy(3'000);
    EXPECT_EQ(clock.elapsed(), 1'000u);
    reading = 5'100;
    EXPECT_EQ(clock.elapsed(), 1'100u);
}
