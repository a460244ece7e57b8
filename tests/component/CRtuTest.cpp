#include "AnsweringLink.h"
#include "RecordingCore.h"
#include "TaskChannel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

// An RTU of a driver that overrides nothing.
class CRtuBase : public testing::Test {
protected:
    static RemoteTerminalUnit configuration() {
        RemoteTerminalUnit info;
        info.id = 3;
        info.name = QStringLiteral("pump-house");
        info.sessionTimeOutMs = 750;
        return info;
    }

    RecordingCore core;
    TaskChannel channel{&core, 9};
    CRtu rtu{&core, &channel, configuration()};
};

} // namespace

TEST_F(CRtuBase, EveryCommandIsAnsweredNotSupported) {
    EXPECT_EQ(rtu.RequestPoll(0, nullptr), 10000);
    EXPECT_EQ(rtu.RequestHistory(0, nullptr), 10000);
    EXPECT_EQ(rtu.manualWrite(1, 1.0, nullptr), 10000);
    EXPECT_EQ(rtu.statusWrite(1, 1, nullptr), 10000);
    EXPECT_EQ(rtu.analogWrite(1, 1.0, nullptr), 10000);
    EXPECT_EQ(rtu.analogWriteList({{1, 1.0}}, nullptr), 10000);
    EXPECT_EQ(rtu.rawStatusWrite(1, QByteArray(), nullptr), 10000);
    EXPECT_EQ(rtu.genericCommand(1, QByteArray(), nullptr), 10000);
    EXPECT_EQ(rtu.timeSync(nullptr), 10000);
    EXPECT_EQ(rtu.readParameter(1, nullptr), 10000);
    EXPECT_EQ(rtu.writeParameter(1, 1.0, nullptr), 10000);
    EXPECT_EQ(rtu.resetDevice(nullptr), 10000);
}

TEST_F(CRtuBase, PreparesItselfAndStopsWithNothingToDo) {
    EXPECT_TRUE(rtu.InitRtu());
    rtu.createScheduler();
    rtu.updateRequestResult(nullptr, 0);
    rtu.StopRtu();
    EXPECT_EQ(core.publications().size(), 0);
    EXPECT_EQ(core.rtuStatusCount(), 0);
}

TEST_F(CRtuBase, KnowsItsConfigurationAndChannel) {
    EXPECT_EQ(rtu.GetRtuId(), 3);
    EXPECT_EQ(rtu.GetRtuInfo().name, QStringLiteral("pump-house"));
    EXPECT_EQ(rtu.sessionTimeOut(), 750);
    EXPECT_TRUE(rtu.IsEnable());
    EXPECT_EQ(rtu.chennelId(), 9);
    EXPECT_EQ(rtu.GetChannel(), &channel);
}

TEST(CRtu, ReloadGivesEveryPointItsConfiguredAddressAndPreparesAnew) {
    using Reload = void (CRtu::*)();
    for (const Reload reload :
         {&CRtu::ReloadStatusPoint, &CRtu::ReloadAnalogPoint, &CRtu::ReloadBinaryPoint}) {
        TestRtu rtu(nullptr, nullptr, {});
        StatusPoint configured;
        configured.firstAddress = QStringLiteral("I200");
        StatusPoint* status = rtu.GetPointList()->AddStatusPoint(configured);
        status->firstAddress = QStringLiteral("I");
        status->firstAddressNumber = QStringLiteral("200");
        (rtu.*reload)();
        EXPECT_EQ(status->firstAddress, QStringLiteral("I200"));
        EXPECT_EQ(status->firstAddressNumber, QString());
        EXPECT_EQ(rtu.initCount, 1);
    }
}

TEST_F(CRtuBase, TellsTheHostOfAConnectionOnlyWhenItChanges) {
    rtu.SetConnect(false, true);
    EXPECT_EQ(core.rtuStatusCount(), 0);
    rtu.SetConnect(true, true);
    rtu.SetConnect(true, true);
    EXPECT_TRUE(rtu.IsConnect());
    EXPECT_EQ(core.rtuStatusCount(), 1);
    rtu.SetConnect(false, true);
    EXPECT_FALSE(rtu.IsConnect());
    EXPECT_EQ(core.rtuStatusCount(), 2);
}

TEST_F(CRtuBase, KeepsAConnectionThatIsNotToBeReportedToItself) {
    rtu.SetConnect(true, false);
    EXPECT_TRUE(rtu.IsConnect());
    EXPECT_EQ(core.rtuStatusCount(), 0);
}

TEST_F(CRtuBase, CountsEachEndedRequestByItsOutcome) {
    EXPECT_TRUE(rtu.PutRtuStatus(true, true, 0, 1, 0, 0));
    EXPECT_TRUE(rtu.PutRtuStatus(true, true, 0, 1, 0, 0));
    EXPECT_TRUE(rtu.PutRtuStatus(false, false, 0, 0, 1, 0));
    EXPECT_TRUE(rtu.PutRtuStatus(false, false, 0, 0, 0, 1));
    const RtuStatus status = rtu.GetRtuStatus();
    EXPECT_EQ(status.requests, 4U);
    EXPECT_EQ(status.answers, 2U);
    EXPECT_EQ(status.timeOuts, 1U);
    EXPECT_EQ(status.errors, 1U);
    EXPECT_FALSE(status.connected);
    EXPECT_EQ(core.rtuStatusCount(), 4);
}

TEST_F(CRtuBase, FurtherRequestsThatEndedWithOneAreCounted) {
    rtu.PutRtuStatus(true, true, 2, 1, 0, 0);
    EXPECT_EQ(rtu.GetRtuStatus().requests, 3U);
}

// The flag that comes with a report may be older than what stands.
TEST_F(CRtuBase, KeepsItsConnectionFlagWhateverTheReportOfARequestSays) {
    rtu.SetConnect(true, true);
    rtu.PutRtuStatus(false, false, 0, 0, 1, 0);
    EXPECT_TRUE(rtu.IsConnect());
}

TEST_F(CRtuBase, KeepsTheLastAndTheSlowestRoundTripOfItsLink) {
    using std::chrono::milliseconds;
    auto owned = std::make_unique<AnsweringLink>();
    AnsweringLink* link = owned.get();
    channel.SetLinks(std::move(owned));

    link->exchange(milliseconds(20));
    rtu.PutRtuStatus(true, true, 0, 1, 0, 0);
    const RtuStatus first = rtu.GetRtuStatus();
    EXPECT_GE(first.lastRoundTrip, milliseconds(20));
    EXPECT_EQ(first.slowestRoundTrip, first.lastRoundTrip);

    link->exchange(milliseconds(1));
    rtu.PutRtuStatus(true, true, 0, 1, 0, 0);
    const RtuStatus second = rtu.GetRtuStatus();
    EXPECT_GE(second.lastRoundTrip, milliseconds(1));
    EXPECT_GE(second.slowestRoundTrip, first.slowestRoundTrip);
    EXPECT_NE(second.lastRoundTrip, first.lastRoundTrip);
}

// A refusal or a spoilt answer is a failure too, but not silence.
TEST_F(CRtuBase, IsSilentAfterARequestOfWhichNothingCameBack) {
    auto owned = std::make_unique<AnsweringLink>();
    AnsweringLink* link = owned.get();
    channel.SetLinks(std::move(owned));
    EXPECT_FALSE(channel.IsSilent(rtu.GetRtuId()));
    rtu.PutRtuStatus(false, false, 0, 0, 1, 0);
    EXPECT_TRUE(channel.IsSilent(rtu.GetRtuId()));
    link->exchange(std::chrono::milliseconds(1));
    rtu.PutRtuStatus(false, false, 0, 0, 0, 1);
    EXPECT_FALSE(channel.IsSilent(rtu.GetRtuId()));
    rtu.PutRtuStatus(false, false, 0, 0, 0, 1);
    EXPECT_TRUE(channel.IsSilent(rtu.GetRtuId()));
    rtu.PutRtuStatus(true, true, 0, 1, 0, 0); // a poll of a kind that has no points
    EXPECT_FALSE(channel.IsSilent(rtu.GetRtuId()));
}

TEST_F(CRtuBase, RequestWithoutAnAnswerKeepsTheLastRoundTrip) {
    auto owned = std::make_unique<AnsweringLink>();
    AnsweringLink* link = owned.get();
    channel.SetLinks(std::move(owned));
    link->exchange(std::chrono::milliseconds(5));
    rtu.PutRtuStatus(true, true, 0, 1, 0, 0);
    const auto last = rtu.GetRtuStatus().lastRoundTrip;
    rtu.PutRtuStatus(false, false, 0, 0, 1, 0);
    EXPECT_EQ(rtu.GetRtuStatus().lastRoundTrip, last);
}
