#include "ChannelBench.h"

#include <HalvexDriverComponent/CReply.h>

using Halvex::DriverErrorResult;
using Halvex::LogLevel;

// The loop calls this private operation with true alone. An explicit instantiation may name it, so its other
// half is reached from here.
void tellLinkState(SBusChennel& channel, bool isConnected);

template <auto operation>
struct PrivateOperation {
    friend void tellLinkState(SBusChennel& channel, bool isConnected) { (channel.*operation)(isConnected); }
};
template struct PrivateOperation<&SBusChennel::OnLinkStateChanged>;

namespace {

class ChannelDisconnect : public ChannelBench {
protected:
    // On the channel's thread, behind its first turn. The journal holds the disconnecting alone.
    void connectAndDisconnect() {
        atPause = [this](int) {
            journal();
            tellLinkState(*channel, false);
        };
        runTurns(1);
    }
};

} // namespace

TEST_F(ChannelDisconnect, IsFlagThenEachRtuThenLogThenEngine) {
    setLink();
    initialise(ethernet);
    addNotingRtu(2);
    addNotingRtu(1);
    connectAndDisconnect();
    EXPECT_EQ(journal(),
              (QStringList{"off rtu 1 disconnected", "off rtu 2 disconnected",
                           "off log 16 Primary channel has disconnected", "off engine has no link"}));
}

TEST_F(ChannelDisconnect, NamesTheSecondaryWhenItIsInUse) {
    setSecondaryLinkAlone();
    initialise(ethernet);
    connectAndDisconnect();
    EXPECT_EQ(journal(),
              (QStringList{"off log 16 Secondary channel has disconnected", "off engine has no link"}));
}

TEST_F(ChannelDisconnect, WritesItsLineAsAChannelLine) {
    setLink();
    initialise(ethernet);
    connectAndDisconnect();
    EXPECT_EQ(linesAt(LogLevel::LinkFailure), QStringList{"Primary channel has disconnected"});
}

TEST_F(ChannelDisconnect, TakesTheLinkFromTheEngineSoThatCommandsFailAtOnce) {
    setLink();
    CRtu* const rtu = addPollingRtu(1, 5);
    initialise(ethernet);
    connectAndDisconnect();
    channel->SetConnect(true); // the flag alone, so that the command reaches the engine
    auto* const reply = new CReply(channel.get());
    EXPECT_EQ(rtu->analogWrite(1, 7, reply), static_cast<int>(DriverErrorResult::Success));
    EXPECT_EQ(reply->wait(0), DriverErrorResult::ChannelError);
}

TEST_F(ChannelDisconnect, PassesOverAnEmptyPlaceAmongTheRtus) {
    setLink();
    initialise(ethernet);
    addNotingRtu(1);
    addNotingRtu(3);
    atPause = [this](int) {
        addEmptyPlace(2); // not earlier: the first CheckScan looks at every RTU
        journal();
        tellLinkState(*channel, false);
    };
    runTurns(1);
    EXPECT_EQ(journal(),
              (QStringList{"off rtu 1 disconnected", "off rtu 3 disconnected",
                           "off log 16 Primary channel has disconnected", "off engine has no link"}));
    takeEmptyPlaceAway(2);
}

TEST_F(ChannelDisconnect, ConnectingPassesOverAnEmptyPlaceAmongTheRtusToo) {
    setLink();
    initialise(ethernet);
    addNotingRtu(1);
    addEmptyPlace(2);
    addNotingRtu(3);
    tellLinkState(*channel, true);
    EXPECT_EQ(journal(), (QStringList{"off log 4 Primary channel has connected", "on engine has the link",
                                      "on rtu 1 connected", "on poll rtu 1 kind 0", "on rtu 3 connected",
                                      "on poll rtu 3 kind 0"}));
    takeEmptyPlaceAway(2);
}
