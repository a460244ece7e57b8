// Which thread may ask a channel for what, and what the same call means on each.

#include "AnsweringLink.h"
#include "RecordingCore.h"
#include "TaskChannel.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

void onAnotherThread(const std::function<void()>& task) {
    std::thread(task).join();
}

// A connected channel with a link and a connected RTU.
class CChannelThreads : public testing::Test {
protected:
    CChannelThreads() {
        auto owned = std::make_unique<AnsweringLink>();
        link = owned.get();
        channel.SetLinks(std::move(owned));
        rtu = channel.addRtu(1);
        rtu->SetConnect(true, true);
        channel.SetConnect(true);
    }

    TaskChannel channel;
    AnsweringLink* link;
    TestRtu* rtu;
};

// A channel whose loop does nothing until it is asked to end. A place of its own for each death test to stop
// in.
class IdlingChannel : public CChannel {
public:
    IdlingChannel() : CChannel(nullptr, 17) {}
    bool InitChannel() override { return true; }
    void CloseChannel() override {}
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override { return new TestRtu(nullptr, this, info); }

    void startAndDelete() {
        start();
        delete this;
    }

protected:
    void run() override {
        while (!IsShutdown())
            msleep(1);
    }
};

constexpr const char* advice = "call SetShutdown\\(true\\) and wait\\(\\) before this";

} // namespace

TEST_F(CChannelThreads, ChannelsOwnThreadTellsOfAFailure) {
    channel.onItsThread([this] { channel.SetConnect(false); });
    EXPECT_FALSE(channel.IsConnect());
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 1U);
    EXPECT_TRUE(rtu->IsConnect());
}

TEST_F(CChannelThreads, OtherThreadClosesTheLineOfARunningChannel) {
    channel.onItsThread([this] { onAnotherThread([this] { channel.SetConnect(false); }); });
    EXPECT_FALSE(channel.IsConnect());
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 0U);
    EXPECT_EQ(channel.GetChannelStatus().failedMs, 0);
    EXPECT_FALSE(rtu->IsConnect());
}

TEST_F(CChannelThreads, HostClosesTheLineOfAChannelThatDoesNotRun) {
    channel.SetConnect(false);
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 0U);
    EXPECT_FALSE(rtu->IsConnect());
}

// The exchange of another request may be in progress then.
TEST_F(CChannelThreads, ReportOnTheThreadOfARefusedCommandTouchesNoExchange) {
    channel.onItsThread([this] {
        link->exchange(std::chrono::milliseconds(1));
        onAnotherThread([this] { rtu->PutRtuStatus(false, false, 0, 0, 0, 1); });
        EXPECT_EQ(rtu->GetRtuStatus().errors, 1U);
        EXPECT_EQ(rtu->GetRtuStatus().lastRoundTrip.count(), 0);
        EXPECT_FALSE(channel.IsSilent(1));
        rtu->PutRtuStatus(true, true, 0, 1, 0, 0);
        EXPECT_GT(rtu->GetRtuStatus().lastRoundTrip.count(), 0);
    });
}

TEST(CChannelThreadsDeathTest, ChannelWhoseThreadRunsCannotBeDeleted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH((new IdlingChannel)->startAndDelete(),
                 std::string("channel 17 is deleted while its thread runs: ") + advice);
}

TEST(CChannelThreadsDeathTest, ChannelWhoseThreadRunsTakesNoRtu) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    IdlingChannel channel;
    EXPECT_DEATH(
        {
            channel.start();
            channel.AddRtu({});
        },
        std::string("channel 17 is given an RTU while its thread runs: ") + advice);
}

TEST(CChannelThreadsDeathTest, ChannelWhoseThreadRunsTakesNoLinks) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    IdlingChannel channel;
    EXPECT_DEATH(
        {
            channel.start();
            channel.SetLinks(nullptr);
        },
        std::string("channel 17 is given other links while its thread runs: ") + advice);
}

TEST(CChannelThreadsDeathTest, EndedThreadLeavesItsChannelToTheHost) {
    auto channel = std::make_unique<IdlingChannel>();
    channel->start();
    channel->SetShutdown(true);
    channel->wait();
    EXPECT_NE(channel->AddRtu({}), nullptr);
    channel.reset();
}
