#include "ChannelBench.h"
#include "Hex.h"

#include <chrono>

using Halvex::LogLevel;
using namespace std::chrono_literals;

namespace {

class ChannelLoop : public ChannelBench {
protected:
    static int station(const QByteArray& telegram) { return static_cast<unsigned char>(telegram[9]); }

    // Adds a point that reads `input`, and whose command is a pulse of output 7.
    static void addPulseOutput(CRtu* rtu, const char* input) {
        StatusPoint point;
        point.number = 2;
        point.firstAddress = QString::fromLatin1(input);
        point.firstOutputAddress = QStringLiteral("O7");
        point.pulse = true;
        point.pulseWidthMs = 1;
        rtu->GetPointList()->AddStatusPoint(point);
    }
};

const QString primaryConnected = QStringLiteral("Primary channel has connected");
const QString openingFailed = QStringLiteral("Error opening channel");

} // namespace

TEST_F(ChannelLoop, ReturnsAtOnceWhenShutdownIsSetBeforeItStarts) {
    setLink();
    addPollingRtu(1, 5);
    initialise(ethernet);
    channel->SetShutdown(true);
    channel->run();
    EXPECT_EQ(journal(), QStringList{});
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChannelLoop, ReallyPausesTenMillisecondsUnlessATestTakesThePauseOver) {
    setLink();
    initialise(ethernet);
    int scans = 0;
    channel->SetScanClock([&] {
        channel->SetShutdown(++scans == 4); // ends behind the pause of this turn
        return qint64{0};
    });
    const auto begun = std::chrono::steady_clock::now();
    channel->run();
    const auto passed = std::chrono::steady_clock::now() - begun;
    EXPECT_GE(passed, 40ms);
    EXPECT_LT(passed, 10s) << "not seconds";
}

TEST_F(ChannelLoop, ConnectsALinkThatOpensAtOnceAndPollsEveryRtuOnce) {
    const ControllerLink* link = setLink();
    const CRtu* first = addPollingRtu(1, 5);
    const CRtu* second = addPollingRtu(2, 6);
    initialise(ethernet);
    runTurns(4);
    EXPECT_TRUE(channel->IsConnect());
    EXPECT_TRUE(first->IsConnect());
    EXPECT_TRUE(second->IsConnect());
    EXPECT_EQ(linesAt(LogLevel::Success), QStringList{primaryConnected});
    EXPECT_EQ(link->openCount(), 1);
    // One read of register 10 each; the sequence numbers run through.
    ASSERT_EQ(link->telegrams().size(), 2);
    EXPECT_EQ(toHex(link->telegrams()[0]).left(41), "00 00 00 10 01 00 00 00 00 05 06 00 00 0A");
    EXPECT_EQ(toHex(link->telegrams()[1]).left(41), "00 00 00 10 01 00 00 01 00 06 06 00 00 0A");
}

TEST_F(ChannelLoop, AsksForStatusAndAnalogPointsAlikeOnConnecting) {
    const ControllerLink* link = setLink();
    CRtu* const rtu = addPollingRtu(1, 5);
    addPulseOutput(rtu, "F3");
    initialise(ethernet);
    runTurns(2);
    ASSERT_EQ(link->telegrams().size(), 2);
    EXPECT_EQ(toHex(link->telegrams()[0]).mid(27, 14), "05 02 00 00 03");
    EXPECT_EQ(toHex(link->telegrams()[1]).mid(27, 14), "05 06 00 00 0A");
}

TEST_F(ChannelLoop, WritesItsConnectLineAsAChannelLine) {
    setLink();
    initialise(ethernet);
    runTurns(1);
    const LogLine line = log.lines().value(0);
    EXPECT_EQ(line.text, primaryConnected);
    EXPECT_EQ(line.route, LogLine::Route::All);
    EXPECT_EQ(line.channelId, channelId);
    EXPECT_EQ(line.rtuId, 0);
    EXPECT_EQ(static_cast<int>(line.level), 4);
}

TEST_F(ChannelLoop, PollsInTheOrderOfTheRtuKeys) {
    const ControllerLink* link = setLink();
    addPollingRtu(9, 90);
    addPollingRtu(2, 20);
    addPollingRtu(5, 50);
    initialise(ethernet);
    runTurns(3);
    const QList<QByteArray> telegrams = link->telegrams();
    ASSERT_EQ(telegrams.size(), 3);
    EXPECT_EQ(station(telegrams[0]), 20);
    EXPECT_EQ(station(telegrams[1]), 50);
    EXPECT_EQ(station(telegrams[2]), 90);
}

TEST_F(ChannelLoop, ConnectsAndPollsDisabledRtusToo) {
    const ControllerLink* link = setLink();
    RemoteTerminalUnit disabled = record(1, 5);
    disabled.enabled = false;
    CRtu* const rtu = channel->AddRtu(disabled);
    addRegister(rtu, "R10");
    initialise(ethernet);
    runTurns(1);
    EXPECT_EQ(link->telegrams().size(), 1);
    EXPECT_TRUE(rtu->IsConnect());
}

TEST_F(ChannelLoop, RunsOneRequestATurnFromTheTurnInWhichItConnects) {
    const ControllerLink* link = setLink();
    for (int id = 1; id <= 3; ++id)
        addPollingRtu(id, id);
    initialise(ethernet);
    QList<int> sentBeforePause;
    atPause = [&](int) { sentBeforePause << link->telegrams().size(); };
    runTurns(4);
    EXPECT_EQ(sentBeforePause, (QList<int>{1, 2, 3, 3}));
}

TEST_F(ChannelLoop, SendsWhatHasFallenDueInTheSameTurn) {
    const ControllerLink* link = setLink();
    CRtu* const rtu = addRtu(1, 5);
    addPulseOutput(rtu, "F3");
    initialise(ethernet);
    QList<int> sentBeforePause;
    atPause = [&](int turn) {
        sentBeforePause << link->telegrams().size();
        if (turn == 1)
            rtu->statusWrite(2, 1, nullptr);
        else if (turn == 2)
            QThread::msleep(2); // until the pulse is over
    };
    runTurns(4);
    // The poll, the output switched on, and switched on and off once more.
    EXPECT_EQ(sentBeforePause, (QList<int>{1, 2, 4, 4}));
}

TEST_F(ChannelLoop, HandsWhatItReadsToTheHost) {
    setLink();
    addPollingRtu(1, 5);
    initialise(ethernet);
    runTurns(1);
    ASSERT_TRUE(core.point(channelId, 1, 1).has_value());
    EXPECT_EQ(core.point(channelId, 1, 1)->value, 0);
    EXPECT_EQ(core.point(channelId, 1, 1)->quality, PointQuality::Good);
}

TEST_F(ChannelLoop, TriesAFailedOpenAgainWithoutLimitEachTimeLoggedAndCounted) {
    setLink()->failOpens(50);
    const CRtu* rtu = addRtu(1, 5);
    initialise(ethernet);
    runTurns(50);
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_FALSE(rtu->IsConnect());
    EXPECT_EQ(linesAt(LogLevel::LinkFailure).count(openingFailed), 50);
    EXPECT_EQ(channel->GetChannelStatus().failedOpens, 50u);
    runTurns(1);
    EXPECT_TRUE(channel->IsConnect());
    EXPECT_EQ(linesAt(LogLevel::Success), QStringList{primaryConnected});
    EXPECT_EQ(pauses.count(1000), 50);
    EXPECT_EQ(pauses.last(), 10u);
}

TEST_F(ChannelLoop, OpensTheSecondaryOnceTheFrameworkHasChangedToIt) {
    auto primary = makeLink();
    primary->failOpens(3);
    channel->SetLinks(std::move(primary), makeLink());
    initialise(ethernet);
    runTurns(4);
    EXPECT_EQ(linesAt(LogLevel::Success), QStringList{"Secondary channel has connected"});
    EXPECT_TRUE(journal().contains("on engine has the link"));
}

TEST_F(ChannelLoop, OpensAgainAndRepeatsConnectLineAndPollsAfterTheConnectionWasTakenBack) {
    const ControllerLink* link = setLink();
    addPollingRtu(1, 5);
    initialise(ethernet);
    atPause = [this](int turn) { channel->SetConnect(turn != 2); };
    runTurns(3);
    EXPECT_TRUE(channel->IsConnect());
    EXPECT_EQ(link->openCount(), 2);
    EXPECT_EQ(link->telegrams().size(), 2);
    EXPECT_EQ(linesAt(LogLevel::Success), (QStringList{primaryConnected, primaryConnected}));
}

TEST_F(ChannelLoop, ReconnectsAfterAnEthernetControllerKeptSilent) {
    ControllerLink* const link = setLink();
    link->keepSilent();
    const CRtu* rtu = addPollingRtu(1, 5);
    initialise(ethernet);
    runTurns(3);
    EXPECT_EQ(link->openCount(), 3);
    EXPECT_EQ(link->telegrams().size(), 3);
    EXPECT_EQ(rtu->GetRtuStatus().errors, 3u);
    EXPECT_EQ(linesAt(LogLevel::Success).count(primaryConnected), 3);
}

TEST_F(ChannelLoop, NeverClosesTheLinkOrSpeaksOfADisconnectItself) {
    ControllerLink* const link = setLink();
    link->keepSilent();
    addPollingRtu(1, 5);
    initialise(ethernet);
    runTurns(3);
    EXPECT_TRUE(journal().filter("close").isEmpty());
    EXPECT_EQ(linesAt(LogLevel::LinkFailure), QStringList{});
}

TEST_F(ChannelLoop, WithoutALinkIsSilent) {
    addPollingRtu(1, 5);
    initialise(ethernet);
    runTurns(2);
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChannelLoop, OfAnUnknownTypeWithoutALinkRunsAndEnds) {
    addPollingRtu(1, 5);
    initialise(94023);
    runTurns(2);
    EXPECT_EQ(journal(), (QStringList{"off scan", "off pause 1000", "off scan", "off pause 1000"}));
}

TEST_F(ChannelLoop, GoesOnTurningOnALineOfAnUnknownType) {
    initialise(0);
    channel->SetConnect(true); // by the host: such a line never connects by itself
    runTurns(2);
    EXPECT_EQ(journal(), (QStringList{"on scan", "on pause 10", "on scan", "on pause 10"}));
}

TEST_F(ChannelLoop, EndsOnShutdownAndLeavesTheConnectionToTheClosing) {
    setLink();
    addPollingRtu(1, 5);
    initialise(ethernet);
    runTurns(1);
    EXPECT_TRUE(channel->isFinished());
    EXPECT_TRUE(channel->IsConnect());
    channel->CloseChannel();
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelLoop, EndsOnShutdownBehindThePauseWhileItsLinkDoesNotOpen) {
    ControllerLink* const link = setLink();
    link->failOpens(1000);
    initialise(ethernet);
    runTurns(1);
    EXPECT_TRUE(channel->isFinished());
    EXPECT_EQ(link->openCount(), 1);
}
