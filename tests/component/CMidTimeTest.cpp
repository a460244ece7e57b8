#include <HalvexDriverComponent/CMidTime.h>

#include <gtest/gtest.h>

TEST(CMidTime, DefaultIsNull) {
    const CMidTime time;
    EXPECT_TRUE(time.isNull());
    EXPECT_EQ(time.toMSecsSinceEpoch(), 0);
    EXPECT_FALSE(time.toDateTime().isValid());
}

TEST(CMidTime, KeepsMillisecondsAndStatus) {
    const QDateTime moment = QDateTime::fromMSecsSinceEpoch(1'700'000'000'123);
    const CMidTime time(moment, 3);
    EXPECT_FALSE(time.isNull());
    EXPECT_EQ(time.toMSecsSinceEpoch(), 1'700'000'000'123);
    EXPECT_EQ(time.toDateTime(), moment);
    EXPECT_EQ(time.status(), 3);
}

TEST(CMidTime, InvalidTimeIsNull) {
    EXPECT_TRUE(CMidTime(QDateTime(), 0).isNull());
}

TEST(CMidTime, KeepsTimesOfEveryCentury) {
    for (const qint64 milliseconds :
         {qint64{-62'135'596'800'000}, qint64{-4'294'967'296}, qint64{-1}, qint64{1}, qint64{4'294'967'295},
          qint64{4'294'967'296}, qint64{253'402'300'799'999}}) {
        const CMidTime time(QDateTime::fromMSecsSinceEpoch(milliseconds), 0);
        EXPECT_EQ(time.toMSecsSinceEpoch(), milliseconds);
        EXPECT_FALSE(time.isNull());
    }
}
