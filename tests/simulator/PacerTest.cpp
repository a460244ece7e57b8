#include "Pacer.h"
#include "EndPoint.h"

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;

namespace {

const Clock::time_point begin{};
const Bytes ten = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};

} // namespace

TEST(CharacterTime, CountsStartDataParityAndStopBits) {
    SerialSettings settings;
    settings.baud = 10000;
    EXPECT_EQ(settings.characterTime(), 1ms) << "1 + 8 + 0 + 1";
    settings.parity = Parity::Even;
    EXPECT_EQ(settings.characterTime(), 1100us);
    settings.stopBits = 2;
    EXPECT_EQ(settings.characterTime(), 1200us);
    settings.dataBits = 7;
    EXPECT_EQ(settings.characterTime(), 1100us);
}

TEST(Pacer, WithoutPacingAnAnswerLeavesWholeAndAtOnce) {
    Pacer pacer(0ns);
    pacer.noteRequest(9, begin);
    pacer.add(ten, begin);
    EXPECT_EQ(pacer.takeDue(begin), ten);
    EXPECT_FALSE(pacer.nextDue(begin));
}

TEST(Pacer, WithoutPacingALateAnswerLeavesWholeWhenItsTimeHasCome) {
    Pacer pacer(0ns);
    pacer.add(ten, begin + 300ms);
    EXPECT_TRUE(pacer.takeDue(begin + 299ms).empty());
    EXPECT_EQ(pacer.nextDue(begin + 299ms), begin + 300ms);
    EXPECT_EQ(pacer.takeDue(begin + 300ms), ten);
}

TEST(Pacer, TheRequestsOwnTimePassesFirst) {
    Pacer pacer(1ms);
    pacer.noteRequest(9, begin);
    pacer.add(ten, begin);
    EXPECT_TRUE(pacer.takeDue(begin).empty());
    EXPECT_EQ(pacer.nextDue(begin), begin + 9ms);
    EXPECT_TRUE(pacer.takeDue(begin + 9ms).empty());
    EXPECT_EQ(pacer.takeDue(begin + 10ms), Bytes({0}));
}

TEST(Pacer, NoByteLeavesBeforeItsTime) {
    Pacer pacer(1ms);
    pacer.add(ten, begin);
    std::size_t gone = 0;
    for (auto time = 0us; time <= 10ms; time += 100us) {
        gone += pacer.takeDue(begin + time).size();
        EXPECT_EQ(gone, static_cast<std::size_t>(time / 1ms));
    }
    EXPECT_EQ(gone, ten.size());
    EXPECT_FALSE(pacer.nextDue(begin + 10ms));
}

TEST(Pacer, PiecesFollowEachOtherWellWithinTheSilenceOf20Milliseconds) {
    Pacer pacer(520us); // 19200 baud
    pacer.add(Bytes(516, 0), begin);
    Clock::time_point now = begin;
    std::size_t gone = 0;
    pacer.takeDue(now);
    while (const auto next = pacer.nextDue(now)) {
        EXPECT_LE(*next - now, 5ms);
        now = *next;
        const std::size_t piece = pacer.takeDue(now).size();
        EXPECT_GT(piece, 0U);
        gone += piece;
    }
    EXPECT_EQ(gone, 516U);
    EXPECT_EQ(now, begin + 516 * 520us) << "the count does not drift";
}

TEST(Pacer, ADelayedPieceIsCaughtUp) {
    Pacer pacer(1ms);
    pacer.add(ten, begin);
    pacer.takeDue(begin);
    EXPECT_EQ(pacer.takeDue(begin + 7ms), Bytes({0, 1, 2, 3, 4, 5, 6}));
}

TEST(Pacer, ASecondAnswerWaitsUntilTheLineIsFree) {
    Pacer pacer(1ms);
    pacer.add({1, 2}, begin);
    pacer.add({3}, begin);
    pacer.takeDue(begin);
    EXPECT_EQ(pacer.takeDue(begin + 2ms), Bytes({1, 2}));
    EXPECT_EQ(pacer.takeDue(begin + 3ms), Bytes({3}));
}

TEST(Pacer, ALateAnswerDoesNotHoldUpAnEarlierOne) {
    Pacer pacer(1ms);
    pacer.add({1}, begin + 300ms);
    pacer.add({2}, begin);
    pacer.takeDue(begin);
    EXPECT_EQ(pacer.takeDue(begin + 1ms), Bytes({2}));
    EXPECT_EQ(pacer.nextDue(begin + 1ms), begin + 300ms);
}
