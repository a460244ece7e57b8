#include "AnsweringLink.h"
#include "TaskChannel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// A channel with a primary and a secondary end.
class CChannelLinks : public testing::Test {
protected:
    CChannelLinks() {
        auto first = std::make_unique<AnsweringLink>();
        auto second = std::make_unique<ScriptedLink>();
        primary = first.get();
        secondary = second.get();
        channel.SetLinks(std::move(first), std::move(second));
    }

    // Each in a turn of the channel's loop, which the next one follows.
    void failOpens(int count) {
        for (int failure = 0; failure < count; ++failure) {
            channel.PutCommFailDuration();
            channel.CheckScan();
        }
    }

    // Channel errors as the channel's thread meets them: connected, then no longer.
    void failExchanges(int count) {
        channel.onItsThread([this, count] {
            for (int failure = 0; failure < count; ++failure) {
                failConnection();
                channel.CheckScan();
            }
        });
    }

    // On the channel's thread.
    void failConnection() {
        channel.SetConnect(true);
        channel.SetConnect(false);
    }

    TaskChannel channel;
    AnsweringLink* primary;
    ScriptedLink* secondary;
};

} // namespace

TEST(CChannel, HasNoLinkUntilOneIsSet) {
    const TaskChannel channel;
    EXPECT_EQ(channel.GetLink(), nullptr);
    EXPECT_EQ(channel.GetWhereLink(), 0);
}

TEST_F(CChannelLinks, StartsOnThePrimary) {
    EXPECT_EQ(channel.GetLink(), primary);
    EXPECT_EQ(channel.GetWhereLink(), 0);
}

TEST_F(CChannelLinks, ThirdFailedOpenInARowChangesToTheSecondary) {
    failOpens(2);
    EXPECT_EQ(channel.GetLink(), primary);
    failOpens(1);
    EXPECT_EQ(channel.GetLink(), secondary);
    EXPECT_EQ(channel.GetWhereLink(), 1);
    EXPECT_EQ(channel.GetChannelStatus().linkChanges, 1U);
    EXPECT_EQ(channel.GetChannelStatus().whereLink, 1);
    EXPECT_EQ(primary->calls, QStringList{QStringLiteral("close")});
    EXPECT_TRUE(secondary->calls.isEmpty());
}

TEST_F(CChannelLinks, ThreeMoreFailedOpensChangeBack) {
    failOpens(5);
    EXPECT_EQ(channel.GetLink(), secondary);
    failOpens(1);
    EXPECT_EQ(channel.GetLink(), primary);
    EXPECT_EQ(channel.GetChannelStatus().linkChanges, 2U);
}

TEST_F(CChannelLinks, ConnectionBetweenFailedOpensStartsTheirCountAnew) {
    failOpens(2);
    channel.SetConnect(true);
    failOpens(2);
    EXPECT_EQ(channel.GetLink(), primary);
    EXPECT_EQ(channel.GetChannelStatus().failedOpens, 4U);
}

TEST_F(CChannelLinks, ThirdChannelErrorInARowChangesToTheSecondary) {
    failExchanges(2);
    EXPECT_EQ(channel.GetLink(), primary);
    failExchanges(1);
    EXPECT_EQ(channel.GetLink(), secondary);
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 3U);
}

// Who looks at the end in use during an exchange, or in the log line behind it, means the one that it had.
TEST_F(CChannelLinks, ErrorDuringAnExchangeChangesTheEndInTheNextTurnOfTheLoop) {
    failExchanges(2);
    channel.onItsThread([this] {
        failConnection();
        EXPECT_EQ(channel.GetLink(), primary);
        EXPECT_EQ(channel.GetWhereLink(), 0);
        EXPECT_EQ(channel.GetChannelStatus().whereLink, 0);
        EXPECT_EQ(channel.GetChannelStatus().linkChanges, 0U);
        EXPECT_TRUE(primary->calls.isEmpty());
        channel.CheckScan();
        EXPECT_EQ(channel.GetLink(), secondary);
        EXPECT_EQ(channel.GetChannelStatus().linkChanges, 1U);
        EXPECT_EQ(primary->calls, QStringList{QStringLiteral("close")});
    });
}

TEST_F(CChannelLinks, ThirdFailedOpenKeepsTheEndUntilTheNextTurnOfTheLoop) {
    failOpens(2);
    channel.PutCommFailDuration();
    EXPECT_EQ(channel.GetWhereLink(), 0);
    channel.CheckScan();
    EXPECT_EQ(channel.GetWhereLink(), 1);
}

TEST_F(CChannelLinks, LineThatIsOpenAgainIsNotTakenFromTheDriver) {
    failExchanges(2);
    channel.onItsThread([this] {
        failConnection();
        channel.SetConnect(true);
        channel.CheckScan();
        EXPECT_EQ(channel.GetLink(), primary);
        EXPECT_TRUE(primary->calls.isEmpty());
        channel.SetConnect(false);
        channel.CheckScan();
        EXPECT_EQ(channel.GetLink(), secondary);
    });
}

// As on Ethernet, where a short answer closes the line before its request is reported.
TEST_F(CChannelLinks, ShortAnswerThatChangesTheEndIsNotTakenForSilence) {
    TestRtu* rtu = channel.addRtu(1);
    failExchanges(2);
    channel.onItsThread([&] {
        channel.SetConnect(true);
        primary->exchange(std::chrono::milliseconds(2));
        channel.SetConnect(false);
        rtu->PutRtuStatus(false, false, 0, 0, 0, 1);
        EXPECT_FALSE(channel.IsSilent(1));
        EXPECT_GE(rtu->GetRtuStatus().lastRoundTrip, std::chrono::milliseconds(2));
        channel.CheckScan();
    });
    EXPECT_EQ(channel.GetLink(), secondary);
}

TEST_F(CChannelLinks, RoundTripOfAnEndThatIsLeftIsNobodyElses) {
    TestRtu* rtu = channel.addRtu(1);
    primary->exchange(std::chrono::milliseconds(1));
    failOpens(6); // to the other end and back
    EXPECT_EQ(channel.GetLink(), primary);
    rtu->PutRtuStatus(false, false, 0, 0, 1, 0);
    EXPECT_EQ(rtu->GetRtuStatus().lastRoundTrip.count(), 0);
    EXPECT_TRUE(channel.IsSilent(1));
}

TEST_F(CChannelLinks, RtuThatAnswersKeepsTheEndInUse) {
    TestRtu* rtu = channel.addRtu(1);
    failExchanges(2);
    rtu->PutRtuStatus(true, true, 0, 1, 0, 0);
    failExchanges(2);
    EXPECT_EQ(channel.GetLink(), primary);
}

TEST_F(CChannelLinks, TimeOutOfAnRtuIsNoAnswer) {
    TestRtu* rtu = channel.addRtu(1);
    failExchanges(2);
    rtu->PutRtuStatus(false, false, 0, 0, 1, 0);
    failExchanges(1);
    EXPECT_EQ(channel.GetLink(), secondary);
}

// As on a serial line, where an RTU that does not answer leaves the channel connected.
TEST_F(CChannelLinks, ThirdSilentRequestInARowChangesToTheSecondary) {
    TestRtu* rtu = channel.addRtu(1);
    channel.onItsThread([&] {
        channel.SetConnect(true);
        for (int request = 0; request < 2; ++request)
            rtu->PutRtuStatus(true, false, 0, 0, 1, 0);
        EXPECT_TRUE(channel.IsConnect());
        rtu->PutRtuStatus(true, false, 0, 0, 1, 0);
        EXPECT_FALSE(channel.IsConnect());
        channel.CheckScan();
    });
    EXPECT_EQ(channel.GetLink(), secondary);
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 1U);
}

TEST_F(CChannelLinks, AnswerBetweenSilentRequestsStartsTheirCountAnew) {
    TestRtu* rtu = channel.addRtu(1);
    channel.onItsThread([&] {
        channel.SetConnect(true);
        for (int request = 0; request < 10; ++request)
            rtu->PutRtuStatus(true, false, 0, request % 2 == 0 ? 1 : 0, request % 2 == 0 ? 0 : 1, 0);
        EXPECT_TRUE(channel.IsConnect());
    });
    EXPECT_EQ(channel.GetLink(), primary);
}

TEST_F(CChannelLinks, DisconnectByTheHostIsNoChannelError) {
    for (int round = 0; round < 5; ++round) {
        channel.SetConnect(true);
        channel.SetConnect(false);
        channel.CheckScan();
    }
    EXPECT_EQ(channel.GetLink(), primary);
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 0U);
}

TEST_F(CChannelLinks, DisconnectOfAChannelThatIsNotConnectedIsNoChannelError) {
    channel.onItsThread([this] {
        for (int round = 0; round < 5; ++round)
            channel.SetConnect(false);
    });
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 0U);
}

TEST_F(CChannelLinks, ChangeStartsBothCountsAnew) {
    failExchanges(2);
    failOpens(3);
    EXPECT_EQ(channel.GetLink(), secondary);
    failExchanges(2);
    EXPECT_EQ(channel.GetLink(), secondary);
    failExchanges(1);
    EXPECT_EQ(channel.GetLink(), primary);
}

TEST(CChannel, WithoutASecondaryStaysConnectedThroughSilence) {
    TaskChannel channel;
    channel.SetLinks(std::make_unique<ScriptedLink>());
    TestRtu* rtu = channel.addRtu(1);
    channel.onItsThread([&] {
        channel.SetConnect(true);
        for (int request = 0; request < 10; ++request)
            rtu->PutRtuStatus(true, false, 0, 0, 1, 0);
        EXPECT_TRUE(channel.IsConnect());
    });
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 0U);
}

TEST(CChannel, WithoutASecondaryStaysOnThePrimary) {
    TaskChannel channel;
    auto link = std::make_unique<ScriptedLink>();
    ScriptedLink* only = link.get();
    channel.SetLinks(std::move(link));
    for (int failure = 0; failure < 10; ++failure) {
        channel.PutCommFailDuration();
        channel.CheckScan();
    }
    EXPECT_EQ(channel.GetLink(), only);
    EXPECT_EQ(channel.GetChannelStatus().linkChanges, 0U);
    EXPECT_TRUE(only->calls.isEmpty());
}

TEST_F(CChannelLinks, LinkInUseCanBeReadOnOtherThreadsWhileItChanges) {
    std::atomic<bool> ended{false};
    std::thread reader([&] {
        while (!ended) {
            const CLink* link = channel.GetLink();
            EXPECT_TRUE(link == primary || link == secondary);
            channel.GetChannelStatus();
        }
    });
    channel.onItsThread([this] { failOpens(3000); });
    ended = true;
    reader.join();
    EXPECT_EQ(channel.GetChannelStatus().linkChanges, 1000U);
}

namespace {

class WakeCountingLink : public ScriptedLink {
public:
    explicit WakeCountingLink(int* counter) : wakes(counter) {}

private:
    void wake() override { ++*wakes; }
    int* wakes;
};

} // namespace

TEST(CChannel, InterruptReachesBothEnds) {
    int primaryWakes = 0;
    int secondaryWakes = 0;
    TaskChannel channel;
    channel.SetLinks(std::make_unique<WakeCountingLink>(&primaryWakes),
                     std::make_unique<WakeCountingLink>(&secondaryWakes));
    channel.InterruptLinks();
    EXPECT_EQ(primaryWakes, 1);
    EXPECT_EQ(secondaryWakes, 1);
}

TEST(CChannel, InterruptWithoutLinksDoesNothing) {
    TaskChannel channel;
    channel.InterruptLinks();
    EXPECT_EQ(channel.GetLink(), nullptr);
}
