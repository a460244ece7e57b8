#include "LogRecorder.h"
#include "RtuBench.h"

#include <limits>

using Halvex::DriverErrorResult;
using Halvex::PollKind;

namespace {

constexpr int accepted = 0;
constexpr int notSupported = 10000;

class SBusRtuTest : public RtuBench {};

} // namespace

TEST_F(SBusRtuTest, InitialisingAlwaysSucceeds) {
    EXPECT_TRUE(rtu->InitRtu());
    addAnalog(1, "R1");
    EXPECT_TRUE(rtu->InitRtu());
}

TEST_F(SBusRtuTest, InitialisingSendsNothing) {
    addAnalog(1, "R1");
    addStatus(1, "I1");
    rtu->InitRtu();
    runPending();
    EXPECT_TRUE(protocol->exchanges.isEmpty());
    EXPECT_EQ(endedRequests(), 0u);
}

TEST_F(SBusRtuTest, InitialisingAgainRebuildsThePolls) {
    addAnalog(1, "R1");
    rtu->InitRtu();
    addAnalog(2, "R9");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (QList{readItem(6, 1, 0)}));
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Analog), (QList{readItem(6, 1, 0), readItem(6, 9, 0)}));
}

TEST_F(SBusRtuTest, APollBeforeInitialisingBuildsThePollsFirst) {
    AnalogPoint* point = addAnalog(1, "R200");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (QList{readItem(6, 200, 0)}));
    EXPECT_EQ(point->address, QStringLiteral("R"));
    EXPECT_EQ(point->addressNumber, QStringLiteral("200"));
}

TEST_F(SBusRtuTest, APollOfAnUnsupportedKindBuildsThePollsFirstToo) {
    AnalogPoint* point = addAnalog(1, "R200");
    EXPECT_EQ(rtu->RequestPoll(4, nullptr), notSupported);
    EXPECT_EQ(point->address, QStringLiteral("R"));
}

TEST_F(SBusRtuTest, KindsFourAndSixAreNotSupported) {
    const auto expectRefused = [this] {
        EXPECT_EQ(rtu->RequestPoll(4, nullptr), notSupported);
        EXPECT_EQ(rtu->RequestPoll(6, nullptr), notSupported);
    };
    expectRefused(); // without points
    addAnalog(1, "R1");
    addStatus(1, "I1");
    expectRefused(); // builds the polls
    rtu->InitRtu();
    expectRefused();
    protocol->setLink(nullptr);
    expectRefused();
}

TEST_F(SBusRtuTest, EveryOtherKindIsAcceptedAndDoesNothing) {
    addAnalog(1, "R1");
    addStatus(1, "I1");
    for (int kind : {3, 5, 7, 8, 100, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(rtu->RequestPoll(kind, nullptr), accepted) << kind;
    runPending();
    EXPECT_EQ(endedRequests(), 0u);
}

TEST_F(SBusRtuTest, KindsWithoutAPollLeaveTheReplyAlone) {
    addAnalog(1, "R1");
    const int before = CReply::liveCount();
    for (int kind : {3, 4, 5, 6, 7, -1}) {
        auto* reply = new CReply(&channel);
        rtu->RequestPoll(kind, reply);
        reply->release();
        EXPECT_EQ(CReply::liveCount(), before) << kind;
    }
}

TEST_F(SBusRtuTest, APollThatIsNotBuiltQueuesNothingAndLeavesTheReplyAlone) {
    const int before = CReply::liveCount();
    for (PollKind kind : {PollKind::Integrity, PollKind::Status, PollKind::Analog}) {
        auto* reply = new CReply(&channel);
        EXPECT_EQ(request(kind, reply), accepted);
        reply->release();
        EXPECT_EQ(CReply::liveCount(), before);
    }
    runPending();
    EXPECT_EQ(endedRequests(), 0u);
}

TEST_F(SBusRtuTest, APollCarriesItsReplyAndCompletesItWithSuccess) {
    addAnalog(1, "R1");
    auto* reply = new CReply(&channel);
    EXPECT_EQ(request(PollKind::Analog, reply), accepted);
    runPending();
    ASSERT_EQ(protocol->exchanges.size(), 1);
    EXPECT_EQ(protocol->exchanges[0].reply, reply);
    EXPECT_EQ(reply->wait(10'000), DriverErrorResult::Success);
}

TEST_F(SBusRtuTest, APollThatFailsCompletesItsReplyWithTheFailure) {
    addAnalog(1, "R1");
    protocol->outcome = SBusTimeOut;
    auto* reply = new CReply(&channel);
    request(PollKind::Analog, reply);
    runPending();
    EXPECT_EQ(reply->wait(10'000), DriverErrorResult::TimeOut);
}

TEST_F(SBusRtuTest, APollKeepsItsReplyAliveUntilItEnds) {
    addAnalog(1, "R1");
    const int before = CReply::liveCount();
    auto* reply = new CReply(&channel);
    request(PollKind::Analog, reply);
    reply->release();
    EXPECT_EQ(CReply::liveCount(), before + 1);
    runPending();
    EXPECT_EQ(CReply::liveCount(), before);
}

TEST_F(SBusRtuTest, AReplyStaysWithItsOwnPoll) {
    addAnalog(1, "R1");
    auto* reply = new CReply(&channel);
    request(PollKind::Analog, reply);
    runPending();
    reply->wait(10'000);
    request(PollKind::Analog);
    runPending();
    ASSERT_EQ(protocol->exchanges.size(), 2);
    EXPECT_EQ(protocol->exchanges[1].reply, nullptr);
}

TEST_F(SBusRtuTest, TwoPollsOfOneKindInARowQueueOneAndNeverCompleteTheSecondReply) {
    addAnalog(1, "R1");
    const int before = CReply::liveCount();
    auto* first = new CReply(&channel);
    auto* second = new CReply(&channel);
    EXPECT_EQ(request(PollKind::Integrity, first), accepted);
    EXPECT_EQ(request(PollKind::Integrity, second), accepted);
    runPending();
    EXPECT_EQ(protocol->exchanges.size(), 1);
    EXPECT_EQ(first->wait(10'000), DriverErrorResult::Success);
    EXPECT_EQ(second->wait(50), std::nullopt);
    // Its reference was taken, and nobody gives it back before the channel goes.
    EXPECT_EQ(CReply::liveCount(), before + 1);
}

TEST(SBusRtuReply, OfADroppedPollIsFreedWithItsChannel) {
    const int before = CReply::liveCount();
    {
        RecordingCore core;
        ScriptedLink link;
        BenchChannel channel(&core, 1);
        RecordingProtocol protocol(&channel);
        protocol.setLink(&link);
        RemoteTerminalUnit info;
        info.id = 1;
        auto* rtu = static_cast<SBusRtu*>(channel.AddRtu(info));
        rtu->attachProtocol(&protocol, nullptr);
        AnalogPoint point;
        point.number = 1;
        point.address = QStringLiteral("R1");
        rtu->GetPointList()->AddAnalogPoint(point);
        rtu->RequestPoll(2, nullptr);
        auto* reply = new CReply(&channel);
        rtu->RequestPoll(2, reply);
        reply->release();
        EXPECT_EQ(CReply::liveCount(), before + 1);
    }
    EXPECT_EQ(CReply::liveCount(), before);
}

TEST_F(SBusRtuTest, APollWhileOfflineIsDroppedWithoutAWord) {
    addAnalog(1, "R1");
    protocol->setLink(nullptr);
    const LogRecorder log;
    auto* reply = new CReply(&channel);
    EXPECT_EQ(request(PollKind::Analog, reply), accepted);
    protocol->setLink(&link);
    runPending();
    EXPECT_TRUE(protocol->exchanges.isEmpty());
    EXPECT_EQ(endedRequests(), 0u);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(reply->wait(50), std::nullopt);
}

TEST_F(SBusRtuTest, StoppingChangesNothing) {
    addAnalog(1, "R1");
    request(PollKind::Analog);
    rtu->StopRtu();
    runPending();
    EXPECT_EQ(protocol->exchanges.size(), 1);
    EXPECT_EQ(telegramsOf(PollKind::Analog), (QList{readItem(6, 1, 0)}));
}

TEST_F(SBusRtuTest, AHistoryRequestIsAcceptedAndDoesNothing) {
    addAnalog(1, "R1");
    const int before = CReply::liveCount();
    for (int kind : {0, 1, 2, 4, -7}) {
        auto* reply = new CReply(&channel);
        EXPECT_EQ(rtu->RequestHistory(kind, reply), accepted);
        EXPECT_EQ(rtu->RequestHistory(kind, nullptr), accepted);
        reply->release();
        EXPECT_EQ(CReply::liveCount(), before);
    }
    runPending();
    EXPECT_EQ(endedRequests(), 0u);
}

TEST_F(SBusRtuTest, TheEntriesAfterTimeSyncAreNotSupportedWhateverTheirArguments) {
    addAnalog(1, "R1");
    const int before = CReply::liveCount();
    auto* reply = new CReply(&channel);
    for (CReply* any : {reply, static_cast<CReply*>(nullptr)}) {
        EXPECT_EQ(rtu->readParameter(0, any), notSupported);
        EXPECT_EQ(rtu->readParameter(4'000'000'000u, any), notSupported);
        EXPECT_EQ(rtu->writeParameter(0, 0.0, any), notSupported);
        EXPECT_EQ(rtu->writeParameter(1, std::numeric_limits<double>::quiet_NaN(), any), notSupported);
        EXPECT_EQ(rtu->resetDevice(any), notSupported);
    }
    reply->release();
    EXPECT_EQ(CReply::liveCount(), before);
    runPending();
    EXPECT_EQ(endedRequests(), 0u);
}

TEST_F(SBusRtuTest, TheEntriesThatItDoesNotServeStayTheBases) {
    EXPECT_EQ(rtu->manualWrite(1, 1.0, nullptr), notSupported);
    EXPECT_EQ(rtu->rawStatusWrite(1, {}, nullptr), notSupported);
    EXPECT_EQ(rtu->genericCommand(1, {}, nullptr), notSupported);
}

TEST_F(SBusRtuTest, DeclaresNoMetaObjectOfItsOwn) {
    EXPECT_STREQ(rtu->metaObject()->className(), "CRtu");
}

TEST_F(SBusRtuTest, KnowsItsChannelAndRecord) {
    EXPECT_EQ(rtu->GetChannel(), &channel);
    EXPECT_EQ(rtu->chennelId(), channelId);
    EXPECT_EQ(rtu->GetRtuId(), rtuId);
    EXPECT_EQ(rtu->GetRtuInfo().scan.stationAddress, QStringLiteral("5"));
}

TEST_F(SBusRtuTest, LeavesEngineAndDelayedQueueToTheChannelWhenItGoes) {
    {
        RemoteTerminalUnit info;
        info.id = 99;
        SBusRtu passing(&channel, &core, info);
        passing.attachProtocol(protocol, &delayedQueue);
        passing.InitRtu();
    }
    addAnalog(1, "R1");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (QList{readItem(6, 1, 0)}));
    delayedQueue.dispatchDue();
}

TEST_F(SBusRtuTest, PollsThatAreBuiltAreNotBuiltAgain) {
    addAnalog(1, "R10");
    rtu->InitRtu();
    addAnalog(2, "R20");
    rtu->buildPollTable();
    EXPECT_EQ(telegramsOf(Halvex::PollKind::Analog), QList<SBusRequestItem>{readItem(6, 10, 0)});
}
