#include "LineHealth.h"

#include <gtest/gtest.h>

namespace {

using Heard = LineHealth::Heard;

constexpr int integrity = 0;
constexpr int status = 1;
constexpr int analog = 2;

LineHealth healthOf(int ends) {
    LineHealth health;
    health.setEnds(ends);
    return health;
}

// A line with two ends that stays connected through the silence of its controllers.
class LineHealthOfTwoEnds : public testing::Test {
protected:
    void failOpens(int count) {
        for (int failure = 0; failure < count; ++failure)
            health.openFailed(0);
    }
    void failChannel(int count) {
        for (int failure = 0; failure < count; ++failure)
            health.failed(0);
    }
    bool ended(Heard heard) { return health.requestEnded(1, heard, true); }

    LineHealth health = healthOf(2);
};

// RTU 1, whose kinds of poll have periods of 9,000, 900 and 300 ms and whose exchanges may take a second.
RemoteTerminalUnit controller() {
    RemoteTerminalUnit rtu;
    rtu.id = 1;
    rtu.periods = {9'000, 900, 300};
    rtu.sessionTimeOutMs = 1'000;
    return rtu;
}

} // namespace

TEST_F(LineHealthOfTwoEnds, ThreeFailedOpensInARowWantTheOtherEnd) {
    failOpens(2);
    EXPECT_FALSE(health.wantsOtherEnd());
    failOpens(1);
    EXPECT_TRUE(health.wantsOtherEnd());
    EXPECT_EQ(health.figures().failedOpens, 3U);
}

TEST_F(LineHealthOfTwoEnds, OpenBetweenFailedOpensStartsTheirCountAnew) {
    failOpens(2);
    health.opened(0);
    failOpens(2);
    EXPECT_FALSE(health.wantsOtherEnd());
}

TEST_F(LineHealthOfTwoEnds, ThreeChannelErrorsInARowWantTheOtherEndThoughTheLineOpensBetweenThem) {
    failChannel(2);
    health.opened(0);
    EXPECT_FALSE(health.wantsOtherEnd());
    failChannel(1);
    EXPECT_TRUE(health.wantsOtherEnd());
    EXPECT_EQ(health.figures().channelErrors, 3U);
}

TEST_F(LineHealthOfTwoEnds, AnswerBetweenChannelErrorsStartsTheirCountAnew) {
    failChannel(2);
    ended(Heard::Answer);
    failChannel(2);
    EXPECT_FALSE(health.wantsOtherEnd());
}

TEST_F(LineHealthOfTwoEnds, SpoiltAnswerBetweenChannelErrorsIsNone) {
    failChannel(2);
    ended(Heard::SpoiltAnswer);
    failChannel(1);
    EXPECT_TRUE(health.wantsOtherEnd());
}

TEST_F(LineHealthOfTwoEnds, FailedOpensAndChannelErrorsAreCountedApart) {
    failOpens(2);
    failChannel(2);
    EXPECT_FALSE(health.wantsOtherEnd());
}

TEST_F(LineHealthOfTwoEnds, OtherEndIsWantedUntilTheChange) {
    failChannel(5);
    EXPECT_TRUE(health.wantsOtherEnd());
    health.changedEnds();
    EXPECT_FALSE(health.wantsOtherEnd());
    EXPECT_EQ(health.figures().changesOfEnds, 1U);
}

TEST_F(LineHealthOfTwoEnds, ChangeStartsBothCountsAnew) {
    failOpens(2);
    failChannel(3);
    health.changedEnds();
    failOpens(2);
    failChannel(2);
    EXPECT_FALSE(health.wantsOtherEnd());
}

TEST_F(LineHealthOfTwoEnds, ThirdSilentRequestInARowFailsTheLine) {
    EXPECT_FALSE(ended(Heard::Nothing));
    EXPECT_FALSE(ended(Heard::Nothing));
    EXPECT_TRUE(ended(Heard::Nothing));
    health.failed(0);
    EXPECT_TRUE(health.wantsOtherEnd());
    EXPECT_EQ(health.figures().channelErrors, 1U);
}

TEST_F(LineHealthOfTwoEnds, SilentRequestsOfAllControllersCountTogether) {
    health.requestEnded(1, Heard::Nothing, true);
    health.requestEnded(2, Heard::Nothing, true);
    EXPECT_TRUE(health.requestEnded(3, Heard::Nothing, true));
}

TEST_F(LineHealthOfTwoEnds, AnswerBetweenSilentRequestsStartsTheirCountAnew) {
    for (int request = 0; request < 10; ++request)
        EXPECT_FALSE(ended(request % 3 == 2 ? Heard::Answer : Heard::Nothing)) << request;
}

TEST_F(LineHealthOfTwoEnds, SpoiltAnswersNeverFailTheLine) {
    for (int request = 0; request < 10; ++request)
        EXPECT_FALSE(ended(Heard::SpoiltAnswer));
}

// Where silence closes the line, it is told as a channel error; it must not count twice.
TEST_F(LineHealthOfTwoEnds, SilenceThatHasClosedTheLineIsCountedOnce) {
    for (int request = 0; request < 2; ++request) {
        health.failed(0);
        EXPECT_FALSE(health.requestEnded(1, Heard::Nothing, false));
    }
    EXPECT_FALSE(health.wantsOtherEnd());
}

TEST(LineHealth, OfOneEndNeverWantsAnotherNorFailsOfSilence) {
    LineHealth health = healthOf(1);
    for (int failure = 0; failure < 10; ++failure) {
        health.openFailed(0);
        health.failed(0);
        EXPECT_FALSE(health.requestEnded(1, Heard::Nothing, true));
    }
    EXPECT_FALSE(health.wantsOtherEnd());
    EXPECT_EQ(health.figures().channelErrors, 10U);
}

TEST(LineHealth, OtherEndsStartBothCountsAnew) {
    LineHealth health = healthOf(2);
    for (int failure = 0; failure < 3; ++failure) {
        health.openFailed(0);
        health.failed(0);
    }
    health.setEnds(2);
    EXPECT_FALSE(health.wantsOtherEnd());
}

TEST(LineHealth, KnowsWhichControllersAreSilent) {
    LineHealth health;
    EXPECT_FALSE(health.isSilent(1));
    health.requestEnded(1, Heard::Nothing, true);
    health.requestEnded(2, Heard::Answer, true);
    EXPECT_TRUE(health.isSilent(1));
    EXPECT_FALSE(health.isSilent(2));
    health.requestEnded(1, Heard::SpoiltAnswer, true);
    EXPECT_FALSE(health.isSilent(1));
}

TEST(LineHealth, ControllerThatTakesAnothersPlaceIsNotSilent) {
    LineHealth health;
    health.requestEnded(1, Heard::Nothing, true);
    health.forget(1);
    EXPECT_FALSE(health.isSilent(1));
}

TEST(LineHealth, ControllerThatIsNotSilentIsAskedForEverything) {
    LineHealth health;
    health.requestEnded(1, Heard::SpoiltAnswer, true);
    for (const int kind : {integrity, status, analog})
        EXPECT_TRUE(health.mayPoll(controller(), kind, 2, 0)) << kind;
}

TEST(LineHealth, SilentControllerIsAskedForItsMostFrequentKindAfterItsTimeOut) {
    LineHealth health;
    health.requestEnded(1, Heard::Nothing, true);
    EXPECT_FALSE(health.mayPoll(controller(), analog, 2, 5'000));
    EXPECT_FALSE(health.mayPoll(controller(), analog, 2, 5'999));
    EXPECT_TRUE(health.mayPoll(controller(), analog, 2, 6'000));
    EXPECT_FALSE(health.mayPoll(controller(), integrity, 2, 6'000));
    EXPECT_FALSE(health.mayPoll(controller(), status, 2, 6'000));
}

TEST(LineHealth, SilentControllerRestsForItsPeriodWhereThatIsLonger) {
    LineHealth health;
    RemoteTerminalUnit rtu = controller();
    rtu.periods = {0, 4'000, 0};
    health.requestEnded(1, Heard::Nothing, true);
    EXPECT_FALSE(health.mayPoll(rtu, status, 2, 0));
    EXPECT_FALSE(health.mayPoll(rtu, status, 2, 3'999));
    EXPECT_TRUE(health.mayPoll(rtu, status, 2, 4'000));
}

TEST(LineHealth, EachRequestOfASilentControllerStartsItsRestAnew) {
    LineHealth health;
    health.requestEnded(1, Heard::Nothing, true);
    EXPECT_FALSE(health.mayPoll(controller(), analog, 2, 0));
    health.requestEnded(1, Heard::Nothing, true);
    EXPECT_FALSE(health.mayPoll(controller(), analog, 2, 1'000));
    EXPECT_TRUE(health.mayPoll(controller(), analog, 2, 2'000));
}

TEST(LineHealth, SilentControllerThatHasItsLineToItselfIsAskedForEverything) {
    LineHealth health;
    health.requestEnded(1, Heard::Nothing, true);
    for (const int kind : {integrity, status, analog})
        EXPECT_TRUE(health.mayPoll(controller(), kind, 1, 0)) << kind;
}

TEST(LineHealth, LineFailsFromItsFirstFailureUntilItIsOpen) {
    LineHealth health;
    EXPECT_EQ(health.failedMs(50), 0);
    health.failed(100);
    health.openFailed(300);
    EXPECT_EQ(health.failedMs(1'000), 900);
    health.opened(1'100);
    EXPECT_EQ(health.failedMs(9'000), 1'000);
}

TEST(LineHealth, LineThatTheHostClosesDoesNotFail) {
    LineHealth health;
    health.openFailed(100);
    health.closedByHost(300);
    EXPECT_EQ(health.failedMs(9'000), 200);
}

TEST(LineHealth, FailuresAddUpOverTime) {
    LineHealth health;
    health.failed(100);
    health.opened(200);
    health.openFailed(1'000);
    health.opened(1'050);
    EXPECT_EQ(health.failedMs(9'000), 150);
}
