#include "ChannelBench.h"

using Halvex::LogLevel;

namespace {

class ChannelOrder : public ChannelBench {
protected:
    // With two RTUs, connected after one turn of the loop.
    ControllerLink* connected() {
        ControllerLink* const link = setLink();
        initialise(ethernet);
        addNotingRtu(1);
        addNotingRtu(2);
        runTurns(1);
        journal();
        return link;
    }

    // In the pause of that turn; the next one finds the channel not connected.
    void loseTheConnectionAt(int turn) {
        atPause = [this, turn](int now) {
            if (now == turn)
                channel->SetConnect(false);
        };
    }
};

} // namespace

TEST_F(ChannelOrder, OnConnectingIsLogThenFlagThenEngineThenEachRtuAndItsPoll) {
    setLink();
    initialise(ethernet);
    addNotingRtu(2);
    addNotingRtu(1);
    runTurns(1);
    EXPECT_EQ(journal(), (QStringList{"off scan", "off open", "off log 4 Primary channel has connected",
                                      "on engine has the link", "on rtu 1 connected", "on poll rtu 1 kind 0",
                                      "on rtu 2 connected", "on poll rtu 2 kind 0", "on pause 10"}));
}

TEST_F(ChannelOrder, OnConnectingTheSecondaryIsTheSameUnderItsName) {
    setSecondaryLinkAlone();
    initialise(ethernet);
    addNotingRtu(1);
    runTurns(1);
    EXPECT_EQ(journal(), (QStringList{"off scan", "off open", "off log 4 Secondary channel has connected",
                                      "on engine has the link", "on rtu 1 connected", "on poll rtu 1 kind 0",
                                      "on pause 10"}));
}

TEST_F(ChannelOrder, WhileConnectedATurnLooksAtTheScansAndPausesTenMilliseconds) {
    connected();
    runTurns(3);
    EXPECT_EQ(journal(),
              (QStringList{"on scan", "on pause 10", "on scan", "on pause 10", "on scan", "on pause 10"}));
}

TEST_F(ChannelOrder, OnConnectingAgainAllIsRepeated) {
    connected();
    loseTheConnectionAt(2);
    runTurns(2);
    EXPECT_EQ(journal(), (QStringList{"on scan", "on pause 10", "off scan", "off open",
                                      "off log 4 Primary channel has connected", "on engine has the link",
                                      "on poll rtu 1 kind 0", "on poll rtu 2 kind 0", "on pause 10"}));
}

TEST_F(ChannelOrder, AFailedOpenIsLoggedBetweenTheScansAndAPauseOfASecond) {
    setLink()->failOpens(2);
    initialise(ethernet);
    addNotingRtu(1);
    runTurns(3);
    const QStringList failedTurn{"off scan", "off open", "off log 16 Error opening channel",
                                 "off pause 1000"};
    const QStringList goodTurn{"off scan",
                               "off open",
                               "off log 4 Primary channel has connected",
                               "on engine has the link",
                               "on rtu 1 connected",
                               "on poll rtu 1 kind 0",
                               "on pause 10"};
    EXPECT_EQ(journal(), failedTurn + failedTurn + goodTurn);
}

// The framework takes the RTUs' connection back when it counts the failed open.
TEST_F(ChannelOrder, AFailedOpenIsLoggedBeforeItIsCounted) {
    connected()->failOpens(1);
    loseTheConnectionAt(2);
    runTurns(2);
    EXPECT_EQ(journal(), (QStringList{"on scan", "on pause 10", "off scan", "off open",
                                      "off log 16 Error opening channel", "off rtu 1 disconnected",
                                      "off rtu 2 disconnected", "off pause 1000"}));
    EXPECT_EQ(channel->GetChannelStatus().failedOpens, 1u);
}

TEST_F(ChannelOrder, ANegativeResultOfTheOpenIsAFailureToo) {
    setLink()->failOpens(1, -1);
    initialise(ethernet);
    runTurns(1);
    EXPECT_EQ(journal(),
              (QStringList{"off scan", "off open", "off log 16 Error opening channel", "off pause 1000"}));
    EXPECT_EQ(channel->GetChannelStatus().failedOpens, 1u);
}

TEST_F(ChannelOrder, WithoutALinkATurnLooksAtTheScansAndPausesASecond) {
    initialise(ethernet);
    addNotingRtu(1);
    runTurns(2);
    EXPECT_EQ(journal(), (QStringList{"off scan", "off pause 1000", "off scan", "off pause 1000"}));
    EXPECT_EQ(channel->GetChannelStatus().failedOpens, 0u);
}

TEST_F(ChannelOrder, OnClosingTheRtusStopBeforeTheLinkClosesAndTheFlagFalls) {
    connected();
    channel->CloseChannel();
    EXPECT_EQ(journal(), (QStringList{"on stop rtu 1", "on stop rtu 2", "on close", "off rtu 1 disconnected",
                                      "off rtu 2 disconnected"}));
}

TEST_F(ChannelOrder, OnClosingWithoutALinkTheRtusStopAndTheFlagStays) {
    initialise(ethernet);
    addNotingRtu(1);
    channel->SetConnect(true);
    channel->CloseChannel();
    EXPECT_EQ(journal(), (QStringList{"on stop rtu 1"}));
}

TEST_F(ChannelOrder, OnClosingAnEmptyPlaceIsPassedOver) {
    initialise(ethernet);
    addNotingRtu(1);
    addEmptyPlace(2);
    addNotingRtu(3);
    channel->CloseChannel();
    EXPECT_EQ(journal(), (QStringList{"off stop rtu 1", "off stop rtu 3"}));
    takeEmptyPlaceAway(2);
}
