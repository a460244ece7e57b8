#include "ChannelBench.h"

#include <HalvexDriverComponent/CReply.h>

using Halvex::DriverErrorResult;
using Halvex::LogLevel;

// The loop tells the channel of a link that has opened; nothing tells it yet of one that is lost. What it
// does then is reached from here: an explicit instantiation may name a private operation.
void tellLinkState(SBusChennel& channel, bool isConnected);

template <auto operation>
struct PrivateOperation {
    friend void tellLinkState(SBusChennel& channel, bool isConnected) { (channel.*operation)(isConnected); }
};
template struct PrivateOperation<&SBusChennel::OnLinkStateChanged>;

namespace {

class ChannelDisconnect : public ChannelBench {
protected:
    // Without its thread.
    void connectAndDisconnect() {
        setLink();
        channel->SetCommType(ethernet);
        channel->InitChannel();
        tellLinkState(*channel, true);
        ASSERT_TRUE(channel->IsConnect());
        log.clear();
        tellLinkState(*channel, false);
    }
};

} // namespace

TEST_F(ChannelDisconnect, TakesTheConnectionFromTheChannelAndEveryRtu) {
    const CRtu* const first = addPollingRtu(1, 5);
    const CRtu* const second = addPollingRtu(2, 6);
    connectAndDisconnect();
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_FALSE(first->IsConnect());
    EXPECT_FALSE(second->IsConnect());
    EXPECT_EQ(linesAt(LogLevel::LinkFailure), QStringList{"Primary channel has disconnected"});
}

TEST_F(ChannelDisconnect, TakesTheLinkFromTheEngineSoThatCommandsFailAtOnce) {
    CRtu* const rtu = addPollingRtu(1, 5);
    connectAndDisconnect();
    channel->SetConnect(true); // the flag alone, so that the command reaches the engine
    auto* const reply = new CReply(channel.get());
    EXPECT_EQ(rtu->analogWrite(1, 7, reply), static_cast<int>(DriverErrorResult::Success));
    EXPECT_EQ(reply->wait(0), DriverErrorResult::ChannelError);
}

// Our own hosts' maps have no empty place; another host's may.
TEST_F(ChannelDisconnect, PassesOverAnEmptyPlaceAmongTheRtus) {
    const CRtu* const first = addPollingRtu(1, 5);
    const CRtu* const last = addPollingRtu(3, 6);
    auto& places = const_cast<QMap<int, CRtu*>&>(channel->GetRtuMap());
    places.insert(2, nullptr);
    setLink();
    channel->SetCommType(ethernet);
    EXPECT_TRUE(channel->InitChannel());
    tellLinkState(*channel, true);
    EXPECT_TRUE(first->IsConnect());
    EXPECT_TRUE(last->IsConnect());
    places.remove(2);
}
