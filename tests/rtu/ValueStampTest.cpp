#include <ValueStamp.h>

#include <gtest/gtest.h>

namespace {

class ValueStampTest : public testing::Test {
protected:
    ValueStampTest() {
        reading = 1'600'000'000'123;
        readings = 0;
    }

    static qint64 read() {
        ++readings;
        return reading;
    }

    static inline qint64 reading = 0;
    static inline int readings = 0;
    sbus::ValueStamp stamp{read};
};

} // namespace

TEST_F(ValueStampTest, IsTheMillisecondInWhichTheValueIsPut) {
    EXPECT_EQ(stamp.now().toMSecsSinceEpoch(), 1'600'000'000'123);
    EXPECT_EQ(stamp.now().status(), 0);
}

TEST_F(ValueStampTest, ReadsTheClockForEachValue) {
    for (int value = 1; value <= 100; ++value) {
        EXPECT_EQ(stamp.now().toMSecsSinceEpoch(), 1'600'000'000'123);
        EXPECT_EQ(readings, value);
    }
    reading += 1;
    EXPECT_EQ(stamp.now().toMSecsSinceEpoch(), 1'600'000'000'124);
}

TEST_F(ValueStampTest, FollowsAClockThatIsSetBack) {
    EXPECT_EQ(stamp.now().toMSecsSinceEpoch(), 1'600'000'000'123);
    reading -= 3'600'000;
    EXPECT_EQ(stamp.now().toMSecsSinceEpoch(), 1'599'996'400'123);
}

TEST_F(ValueStampTest, TakesTheFirstMillisecondsOfTheCountToo) {
    for (const qint64 early : {-1, 0, 1}) {
        reading = early;
        sbus::ValueStamp fresh(read);
        const CMidTime first = fresh.now();
        EXPECT_EQ(first.toMSecsSinceEpoch(), early);
    }
}
