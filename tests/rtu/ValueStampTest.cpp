#include <ValueStamp.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

// Goes on by `step` with each look.
struct SteppedClock {
    static inline std::chrono::nanoseconds at{};
    static inline std::chrono::nanoseconds step{};
    static inline int looks = 0;

    static std::chrono::time_point<SteppedClock, std::chrono::nanoseconds> now() {
        ++looks;
        return std::chrono::time_point<SteppedClock, std::chrono::nanoseconds>(at += step);
    }
    using duration = std::chrono::nanoseconds;
};

constexpr qint64 millisecond = 1'600'000'000'123;

class ValueStampTest : public testing::Test {
protected:
    ValueStampTest() { setClock(0us); }

    static void setClock(std::chrono::nanoseconds intoTheMillisecond, std::chrono::nanoseconds step = 0ns) {
        SteppedClock::at = std::chrono::milliseconds(millisecond) + intoTheMillisecond;
        SteppedClock::step = step;
        SteppedClock::looks = 0;
    }
    qint64 next() { return stamp.now().toMSecsSinceEpoch(); }

    StampBy<SteppedClock> stamp;
};

} // namespace

TEST_F(ValueStampTest, IsTheMillisecondInWhichTheValueIsPut) {
    setClock(969us);
    stamp.beginTelegram();
    EXPECT_EQ(next(), millisecond);
    EXPECT_EQ(stamp.now().status(), 0);
}

TEST_F(ValueStampTest, OneLookServesTheNextValuesOfATelegram) {
    stamp.beginTelegram();
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(next(), millisecond);
    EXPECT_EQ(SteppedClock::looks, 1);
    setClock(1ms);
    EXPECT_EQ(next(), millisecond + 1) << "the seventeenth value has a look of its own";
}

TEST_F(ValueStampTest, TheValuesOfTheNextTelegramTakeNoOlderOne) {
    stamp.beginTelegram();
    EXPECT_EQ(next(), millisecond);
    setClock(5ms);
    stamp.beginTelegram();
    EXPECT_EQ(next(), millisecond + 5);
}

TEST_F(ValueStampTest, JustBeforeTheMillisecondIsOverEachValueHasALookOfItsOwn) {
    setClock(970us, 6us);
    stamp.beginTelegram();
    for (int i = 1; i <= 4; ++i)
        EXPECT_EQ(next(), millisecond) << "at 976, 982, 988 and 994 us";
    EXPECT_EQ(next(), millisecond + 1);
    EXPECT_EQ(SteppedClock::looks, 5);
}

TEST_F(ValueStampTest, FollowsAClockThatIsSetBack) {
    stamp.beginTelegram();
    EXPECT_EQ(next(), millisecond);
    setClock(-1h);
    stamp.beginTelegram();
    EXPECT_EQ(next(), millisecond - 3'600'000);
}
