#include "TaggedValues.h"

#include <gtest/gtest.h>

using namespace soak;

namespace {

// One RTU with a moving register at place 5, a set point at place 6 and a flag at place 7.
class Judging : public testing::Test {
protected:
    Judging() {
        judge.expect(1, 1, 10, 5, ValueJudge::Kind::Moving);
        judge.expect(1, 1, 20, 6, ValueJudge::Kind::Commanded);
        judge.expect(1, 1, 30, 7, ValueJudge::Kind::Bit);
    }

    void show(unsigned point, double value, PointQuality quality = PointQuality::Good) {
        PointUpdate update;
        update.number = point;
        update.value = value;
        update.quality = quality;
        judge.publishPoints(1, 1, {update});
    }

    ValueJudge judge;
};

} // namespace

TEST_F(Judging, AcceptsWhatTheElementsHaveHad) {
    judge.nextMove();
    judge.noteCommand(6, 3);
    show(10, taggedWord(5, 0));
    show(10, taggedWord(5, 1));
    show(20, 0);
    show(20, taggedWord(6, 3));
    show(20, taggedWord(6, 2)); // an older command that came late
    show(30, taggedBit(7));
    EXPECT_EQ(judge.wrongCount(), 0U);
    EXPECT_EQ(judge.valueCount(), 6U);
}

TEST_F(Judging, SeesAValueOfAnotherElementAndASpoiltOne) {
    show(10, taggedWord(6, 0));
    show(10, taggedWord(5, 0) ^ 0x4000'0000);
    show(10, taggedWord(5, 0) + 0.5);
    show(10, -1);
    show(20, taggedWord(5, 0));
    show(30, 1 - taggedBit(7));
    EXPECT_EQ(judge.wrongCount(), 6U);
}

TEST_F(Judging, SeesAValueThatHasNotBeenYetOrIsOver) {
    judge.nextMove();
    show(10, taggedWord(5, 2));
    EXPECT_EQ(judge.wrongCount(), 1U);
    show(10, taggedWord(5, 1));
    EXPECT_EQ(judge.wrongCount(), 1U);
    show(10, taggedWord(5, 0));
    EXPECT_EQ(judge.wrongCount(), 2U);
    show(20, taggedWord(6, 1)); // was never commanded
    EXPECT_EQ(judge.wrongCount(), 3U);
}

TEST_F(Judging, TakesNoValueFromAnUpdateThatIsNotGood) {
    judge.demandFresh();
    judge.nextMove();
    show(10, taggedWord(5, 0));
    show(20, 0);
    show(30, taggedBit(7));
    EXPECT_FALSE(judge.isAllFresh());
    show(10, taggedWord(5, 1), PointQuality::Bad);
    show(10, 0, PointQuality::Bad);
    EXPECT_FALSE(judge.isAllFresh());
    show(10, taggedWord(5, 1));
    EXPECT_TRUE(judge.isAllFresh());
    EXPECT_EQ(judge.wrongCount(), 0U);
}

TEST_F(Judging, CountsTheRequestsUntilEverythingIsFresh) {
    RtuStatus status;
    status.requests = 7;
    judge.publishRtuStatus(1, 1, status);
    judge.demandFresh(ValueJudge::Demanded::MovingPoints);
    judge.nextMove();
    status.requests = 9;
    judge.publishRtuStatus(1, 1, status);
    show(10, taggedWord(5, 1));
    EXPECT_TRUE(judge.isAllFresh());
    EXPECT_EQ(judge.mostRequestsUntilFresh(), 2U);
}
