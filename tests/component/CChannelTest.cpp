#include "RecordingCore.h"
#include "TaskChannel.h"

#include <HalvexDriverComponent/CReply.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

// The last status that a channel handed over.
class StatusCore : public RecordingCore {
public:
    void publishChannelStatus(int channelId, const ChannelStatus& newStatus) override {
        id = channelId;
        status = newStatus;
    }
    int id = 0;
    ChannelStatus status;
};

void putStatusValue(TestRtu* rtu, unsigned number) {
    StatusPoint point;
    point.number = number;
    rtu->GetPointList()->AddStatusPoint(point);
    rtu->PutStatusPoint(false, number, 1, 0, CMidTime(), true);
    rtu->PutDatapoints();
}

PointQuality qualityOf(const TestRtu* rtu) {
    return rtu->GetPointStates().first().quality;
}

} // namespace

TEST(CChannel, KeepsWhatTheHostConfigures) {
    TaskChannel channel(nullptr, 17);
    channel.SetCommType(94021);
    EXPECT_EQ(channel.channelId(), 17);
    EXPECT_EQ(channel.GetCommType(), 94021);
    EXPECT_FALSE(channel.IsConnect());
}

TEST(CChannel, RtusAreMappedByTheirIds) {
    TaskChannel channel;
    TestRtu* second = channel.addRtu(2);
    TestRtu* first = channel.addRtu(1);
    EXPECT_EQ(channel.GetRtuMap().keys(), (QList<int>{1, 2}));
    EXPECT_EQ(channel.GetRtuMap().value(1), first);
    EXPECT_EQ(channel.GetRtuMap().value(2), second);
    EXPECT_EQ(first->GetChannel(), &channel);
}

TEST(CChannel, RtuOfTheSameIdReplacesTheEarlier) {
    TaskChannel channel;
    bool destroyed = false;
    channel.addRtu(1)->onDestroyed = [&] { destroyed = true; };
    TestRtu* replacement = channel.addRtu(1);
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(channel.GetRtuMap().size(), 1);
    EXPECT_EQ(channel.GetRtuMap().value(1), replacement);
}

TEST(CChannel, DestructionDestroysItsRtus) {
    int destroyed = 0;
    {
        TaskChannel channel;
        channel.addRtu(1)->onDestroyed = [&] { ++destroyed; };
        channel.addRtu(2)->onDestroyed = [&] { ++destroyed; };
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(CChannel, HandsItsFiguresToTheHost) {
    StatusCore core;
    TaskChannel channel(&core, 5);
    channel.PutCommFailDuration();
    channel.SetConnect(true);
    channel.PutChannelStatus();
    EXPECT_EQ(core.id, 5);
    EXPECT_TRUE(core.status.connected);
    EXPECT_EQ(core.status.whereLink, 0);
    EXPECT_EQ(core.status.failedOpens, 1U);
    EXPECT_EQ(core.status.channelErrors, 0U);
}

TEST(CChannel, FailedOpenStartsTheFailureTimeAndAConnectionEndsIt) {
    TaskChannel channel;
    EXPECT_EQ(channel.GetChannelStatus().failedMs, 0);
    channel.PutCommFailDuration();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    channel.PutCommFailDuration();
    EXPECT_GE(channel.GetChannelStatus().failedMs, 30);
    channel.SetConnect(true);
    const qint64 failedMs = channel.GetChannelStatus().failedMs;
    EXPECT_GE(failedMs, 30);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(channel.GetChannelStatus().failedMs, failedMs);
}

TEST(CChannel, FailuresAddUpOverTime) {
    TaskChannel channel;
    for (int failure = 0; failure < 2; ++failure) {
        channel.PutCommFailDuration();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        channel.SetConnect(true);
    }
    EXPECT_GE(channel.GetChannelStatus().failedMs, 40);
}

TEST(CChannel, ClosedChannelDoesNotFail) {
    TaskChannel channel;
    channel.PutCommFailDuration();
    channel.SetConnect(false);
    const qint64 failedMs = channel.GetChannelStatus().failedMs;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(channel.GetChannelStatus().failedMs, failedMs);
}

TEST(CChannel, LineThatDoesNotOpenAgainDisconnectsEveryRtu) {
    TaskChannel channel;
    TestRtu* rtu = channel.addRtu(1);
    rtu->SetConnect(true, true);
    putStatusValue(rtu, 1);
    EXPECT_EQ(qualityOf(rtu), PointQuality::Good);
    channel.PutCommFailDuration();
    EXPECT_FALSE(rtu->IsConnect());
    EXPECT_EQ(qualityOf(rtu), PointQuality::Bad);
}

TEST(CChannel, LineThatIsOpenedAgainAtOnceKeepsTheOtherRtusConnected) {
    TaskChannel channel;
    TestRtu* rtu = channel.addRtu(1);
    rtu->SetConnect(true, true);
    putStatusValue(rtu, 1);
    channel.SetConnect(true);
    channel.onItsThread([&] { channel.SetConnect(false); });
    EXPECT_TRUE(rtu->IsConnect());
    EXPECT_EQ(qualityOf(rtu), PointQuality::Good);
}

TEST(CChannel, ChannelThatTheHostClosesDisconnectsEveryRtu) {
    RecordingCore core;
    TaskChannel channel(&core);
    TestRtu* rtu = channel.addRtu(1);
    rtu->SetConnect(true, true);
    putStatusValue(rtu, 1);
    channel.SetConnect(true);
    channel.SetConnect(false);
    EXPECT_FALSE(rtu->IsConnect());
    EXPECT_EQ(core.point(1, 1, 1)->quality, PointQuality::Bad);
}

// As a host of another make may leave one.
TEST(CChannel, PassesOverAnEmptyPlaceAmongItsRtus) {
    TaskChannel channel;
    TestRtu* first = channel.addRtu(1);
    TestRtu* last = channel.addRtu(3);
    const_cast<QMap<int, CRtu*>&>(channel.GetRtuMap()).insert(2, nullptr);
    qint64 now = 0;
    channel.SetScanClock([&] { return now; });

    channel.SetConnect(true);
    channel.CheckScan();
    now = 100'000;
    channel.CheckScan();
    EXPECT_EQ(first->polls.count(0), 2);
    EXPECT_EQ(last->polls.count(0), 1);

    first->SetConnect(true, true);
    last->SetConnect(true, true);
    channel.PutCommFailDuration();
    EXPECT_FALSE(first->IsConnect());
    EXPECT_FALSE(last->IsConnect());

    last->SetConnect(true, true);
    channel.SetConnect(false);
    EXPECT_FALSE(last->IsConnect());
}

TEST(CChannel, RunsWithoutAHost) {
    TaskChannel channel(nullptr);
    TestRtu* rtu = channel.addRtu(1);
    rtu->SetConnect(true, true);
    putStatusValue(rtu, 1);
    EXPECT_FALSE(rtu->PutRtuStatus(true, true, 0, 1, 0, 0));
    channel.PutChannelStatus();
    EXPECT_EQ(qualityOf(rtu), PointQuality::Good);
}
