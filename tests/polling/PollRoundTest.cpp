#include "polling/PollRound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using host::PollRound;
using host::ReadTelegram;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Sender = PollRound::Sender;
using Telegrams = std::vector<ReadTelegram>;

// Single registers stand for telegrams.
ReadTelegram reg(unsigned number) {
    return {'R', number, 1};
}

Telegrams regs(unsigned count) {
    Telegrams telegrams;
    for (unsigned number = 1; number <= count; ++number)
        telegrams.push_back(reg(number));
    return telegrams;
}

PollRound roundOf(const Telegrams& telegrams, unsigned attempts = 3) {
    return {{{Sender::First, telegrams}}, {}, attempts};
}

std::string numbersOf(const Telegrams& telegrams) {
    std::string text;
    for (const ReadTelegram& telegram : telegrams)
        text += (text.empty() ? "" : " ") + std::to_string(telegram.first);
    return text;
}

// Answers all that is left and tells what was asked for: "1 2 | 4".
std::string rest(PollRound& round) {
    std::string text;
    while (!round.isOver()) {
        text += (text.empty() ? "" : " | ") + numbersOf(round.current().telegrams);
        round.answered();
    }
    return text;
}

} // namespace

TEST(PollRound, IsOneRequestForEachShare) {
    PollRound round({{Sender::First, {reg(1), reg(3)}}, {Sender::Second, {reg(2)}}}, {}, 3);
    EXPECT_EQ(round.current().sender, Sender::First);
    round.answered();
    EXPECT_EQ(round.current().sender, Sender::Second);
    round.answered();
    EXPECT_TRUE(round.isOver());
    EXPECT_THAT(round.lost(), IsEmpty());
}

// As where a request could not be sent, and its first telegram is the one that failed.
TEST(PollRound, TakesOneOfItsOwnTelegramsForTheOneThatFailedOrWasRefused) {
    PollRound round = roundOf(regs(3));
    round.failed(round.current().telegrams.front());
    EXPECT_EQ(rest(round), "2 3 | 1");
    PollRound refusing = roundOf(regs(3));
    refusing.refused(refusing.current().telegrams.back(), {});
    EXPECT_EQ(rest(refusing), "1 2");
}

TEST(PollRound, AsksForATelegramThatFailedAlone) {
    PollRound round = roundOf(regs(5));
    round.failed(reg(3));
    EXPECT_EQ(round.current().sender, Sender::Alone);
    EXPECT_EQ(rest(round), "1 2 | 4 5 | 3");
    EXPECT_THAT(round.lost(), IsEmpty());
}

TEST(PollRound, GivesATelegramUpWhenItsLastAttemptHasFailed) {
    PollRound round = roundOf(regs(2));
    round.failed(reg(1));
    EXPECT_EQ(numbersOf(round.current().telegrams), "2");
    round.answered();
    round.failed(reg(1));
    EXPECT_THAT(round.lost(), IsEmpty());
    round.failed(reg(1));
    EXPECT_TRUE(round.isOver());
    EXPECT_THAT(round.lost(), ElementsAre(reg(1)));
}

TEST(PollRound, FailsAsAWholeWhereThereIsOneAttempt) {
    PollRound round = roundOf(regs(3), 1);
    round.failed(reg(2));
    EXPECT_TRUE(round.isOver());
    EXPECT_EQ(numbersOf(round.lost()), "1 2 3");
}

TEST(PollRound, AsksForThePiecesOfARefusedTelegram) {
    PollRound round = roundOf(regs(3));
    round.refused(reg(2), {reg(21), reg(22)});
    EXPECT_EQ(rest(round), "1 | 3 | 21 | 22");
}

TEST(PollRound, DoesNotRepeatARefusal) {
    PollRound round = roundOf({reg(1)});
    round.refused(reg(1), {});
    EXPECT_TRUE(round.isOver());
    EXPECT_THAT(round.lost(), IsEmpty());
}

TEST(PollRound, TakesOutWhatAnotherRequestFoundRefused) {
    PollRound round({{Sender::First, {reg(1)}}, {Sender::Second, {reg(2), reg(3)}}}, {}, 3);
    round.refused(reg(3), {reg(31)});
    EXPECT_EQ(rest(round), "1 | 2 | 31");
}

TEST(PollRound, LeavesOutWhatWasReadMeanwhile) {
    PollRound round = roundOf(regs(5));
    round.failed(reg(3));
    round.wasRead({reg(4), reg(5), reg(1), reg(2)});
    EXPECT_EQ(rest(round), "3");
}

TEST(PollRound, TriesWhatWasRefusedBeforeAtTheEnd) {
    PollRound round({{Sender::First, {reg(1)}}}, {reg(7), reg(8)}, 3);
    EXPECT_FALSE(round.current().isToTryRefused);
    round.answered();
    EXPECT_TRUE(round.current().isToTryRefused);
    round.failed(reg(7));
    EXPECT_EQ(rest(round), "8 | 7");
}

TEST(PollRound, LosesNothingWhenWhatWasRefusedBeforeIsSilentNow) {
    PollRound round({}, {reg(7)}, 2);
    round.failed(reg(7));
    round.failed(reg(7));
    EXPECT_TRUE(round.isOver());
    EXPECT_THAT(round.lost(), IsEmpty());
}

TEST(PollRound, GivesUpAllThatIsLeft) {
    PollRound round = roundOf(regs(3));
    round.failed(reg(2));
    round.answered();
    round.giveUp();
    EXPECT_EQ(numbersOf(round.lost()), "3 2");
}

// Each exchange fails with a probability of 5.5 %, as on a line with 3 % lost and 2.5 % spoilt answers. Of
// polls of five telegrams 24 % would fail at the first try.
TEST(PollRound, FailsInFewerThanOneOfAHundredOnALineWithLosses) {
    std::mt19937 random(1);
    std::bernoulli_distribution isLost(0.055);
    unsigned failed = 0;
    unsigned sent = 0;
    constexpr unsigned polls = 20'000;
    for (unsigned poll = 0; poll < polls; ++poll) {
        PollRound round = roundOf(regs(5));
        while (!round.isOver()) {
            const Telegrams telegrams = round.current().telegrams;
            const auto at = std::find_if(telegrams.begin(), telegrams.end(), [&](const ReadTelegram&) {
                ++sent;
                return isLost(random);
            });
            if (at == telegrams.end())
                round.answered();
            else
                round.failed(*at);
        }
        failed += round.lost().empty() ? 0 : 1;
    }
    EXPECT_LT(failed, polls / 100);
    EXPECT_LT(sent, polls * 7) << "five telegrams and what the losses make of them";
}
