#include "ChannelBench.h"
#include "Hex.h"

#include <atomic>

using Halvex::LogLevel;
using namespace std::chrono_literals;

namespace {

class ChannelLoop : public ChannelBench {
protected:
    // The scan clock shows how often CheckScan has run; the thread must not run yet.
    void countScans() {
        channel->SetScanClock([this] {
            ++scanClockReadings;
            return qint64{0};
        });
        scanClockReadings = 0;
    }

    static int station(const QByteArray& telegram) { return static_cast<unsigned char>(telegram[9]); }

    std::atomic<int> scanClockReadings{0};
};

const QString primaryConnected = QStringLiteral("Primary channel has connected");
const QString secondaryConnected = QStringLiteral("Secondary channel has connected");
const QString openingFailed = QStringLiteral("Error opening channel");

} // namespace

TEST_F(ChannelLoop, ReturnsAtOnceWhenShutdownIsSetBeforeItStarts) {
    const ControllerLink* link = setLink();
    addPollingRtu(1, 5);
    channel->SetCommType(ethernet);
    channel->InitChannel();
    countScans();
    const int preparations = link->resetCount();
    log.clear();
    channel->SetShutdown(true);
    channel->run();
    EXPECT_EQ(scanClockReadings, 0);
    EXPECT_EQ(link->openCount(), 0);
    EXPECT_EQ(link->closeCount(), 0);
    EXPECT_EQ(link->resetCount(), preparations);
    EXPECT_TRUE(link->telegrams().isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChannelLoop, ConnectsALinkThatOpensAtOnceAndPollsEveryRtuOnce) {
    ControllerLink* link = setLink();
    const CRtu* first = addPollingRtu(1, 5);
    const CRtu* second = addPollingRtu(2, 6);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(2));
    ASSERT_TRUE(waitUntil([&] { return second->GetRtuStatus().requests == 1; }));
    EXPECT_TRUE(channel->IsConnect());
    EXPECT_TRUE(first->IsConnect());
    EXPECT_TRUE(second->IsConnect());
    EXPECT_EQ(channel->GetWhereLink(), 0);
    stop();
    EXPECT_EQ(linesAt(LogLevel::Success), QStringList{primaryConnected});
    EXPECT_EQ(link->openCount(), 1);
    // One read of register 10 each; the sequence numbers run through.
    ASSERT_EQ(link->telegrams().size(), 2);
    EXPECT_EQ(toHex(link->telegrams()[0]).left(41), "00 00 00 10 01 00 00 00 00 05 06 00 00 0A");
    EXPECT_EQ(toHex(link->telegrams()[1]).left(41), "00 00 00 10 01 00 00 01 00 06 06 00 00 0A");
}

TEST_F(ChannelLoop, WritesItsConnectLineAsAChannelLine) {
    ControllerLink* link = setLink();
    startWith(ethernet);
    ASSERT_TRUE(link->waitForOpens(1));
    ASSERT_TRUE(waitUntil([this] { return !log.texts(LogLine::Route::All).isEmpty(); }));
    stop();
    const LogLine line = log.lines().value(0);
    EXPECT_EQ(line.text, primaryConnected);
    EXPECT_EQ(line.route, LogLine::Route::All);
    EXPECT_EQ(line.channelId, channelId);
    EXPECT_EQ(line.rtuId, 0);
    EXPECT_EQ(static_cast<int>(line.level), 4);
}

TEST_F(ChannelLoop, PollsInTheOrderOfTheRtuKeys) {
    ControllerLink* link = setLink();
    addPollingRtu(9, 90);
    addPollingRtu(2, 20);
    addPollingRtu(5, 50);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(3));
    stop();
    const QList<QByteArray> telegrams = link->telegrams();
    EXPECT_EQ(station(telegrams[0]), 20);
    EXPECT_EQ(station(telegrams[1]), 50);
    EXPECT_EQ(station(telegrams[2]), 90);
}

TEST_F(ChannelLoop, ConnectsAndPollsDisabledRtusToo) {
    ControllerLink* link = setLink();
    RemoteTerminalUnit disabled = record(1, 5);
    disabled.enabled = false;
    CRtu* rtu = channel->AddRtu(disabled);
    addRegister(rtu, "R10");
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(1));
    EXPECT_TRUE(waitUntil([rtu] { return rtu->IsConnect(); }));
}

TEST_F(ChannelLoop, RunsOneRequestATurnAndPausesTenMillisecondsBetween) {
    ControllerLink* link = setLink();
    for (int id = 1; id <= 5; ++id)
        addPollingRtu(id, id);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(5));
    stop();
    const auto times = link->sendTimes();
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], 10ms) << "before telegram " << i;
}

TEST_F(ChannelLoop, ChecksTheScansOnEveryTurn) {
    ControllerLink* link = setLink();
    addPollingRtu(1, 5);
    countScans();
    startWith(ethernet);
    ASSERT_TRUE(link->waitForOpens(1));
    const int early = scanClockReadings;
    EXPECT_TRUE(waitUntil([&] { return scanClockReadings >= early + 5; }));
}

TEST_F(ChannelLoop, HandsWhatItReadsToTheHost) {
    setLink();
    addPollingRtu(1, 5);
    startWith(ethernet);
    ASSERT_TRUE(waitUntil([this] { return core.point(channelId, 1, 1).has_value(); }));
    EXPECT_EQ(core.point(channelId, 1, 1)->value, 0);
    EXPECT_EQ(core.point(channelId, 1, 1)->quality, PointQuality::Good);
}

TEST_F(ChannelLoop, TriesAFailedOpenAgainAfterASecondEachTimeLoggedAndCounted) {
    ControllerLink* link = setLink();
    link->failOpens(3);
    const CRtu* rtu = addRtu(1, 5);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForOpens(3));
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_FALSE(rtu->IsConnect());
    ASSERT_TRUE(waitUntil([this] { return channel->IsConnect(); }));
    stop();
    EXPECT_EQ(linesAt(LogLevel::LinkFailure), (QStringList{openingFailed, openingFailed, openingFailed}));
    EXPECT_EQ(static_cast<int>(LogLevel::LinkFailure), 16);
    EXPECT_EQ(channel->GetChannelStatus().failedOpens, 3u);
    EXPECT_EQ(linesAt(LogLevel::Success), QStringList{primaryConnected});
    const auto times = link->openTimes();
    ASSERT_EQ(times.size(), 4u);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], 1s) << "before open " << i;
}

TEST_F(ChannelLoop, NamesTheSecondaryWhenItIsInUse) {
    auto primary = std::make_unique<ControllerLink>();
    primary->failOpens(1000);
    auto secondary = std::make_unique<ControllerLink>();
    ControllerLink* const secondaryLink = secondary.get();
    channel->SetLinks(std::move(primary), std::move(secondary));
    startWith(ethernet);
    ASSERT_TRUE(secondaryLink->waitForOpens(1));
    ASSERT_TRUE(waitUntil([this] { return channel->IsConnect(); }));
    EXPECT_NE(channel->GetWhereLink(), 0);
    stop();
    EXPECT_EQ(linesAt(LogLevel::Success), QStringList{secondaryConnected});
}

TEST_F(ChannelLoop, OpensAgainAndRepeatsConnectLineAndPollsAfterTheConnectionWasTakenBack) {
    ControllerLink* link = setLink();
    CRtu* rtu = addPollingRtu(1, 5);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(1));
    ASSERT_TRUE(waitUntil([rtu] { return rtu->GetRtuStatus().requests == 1; }));
    channel->SetConnect(false);
    ASSERT_TRUE(link->waitForTelegrams(2));
    ASSERT_TRUE(waitUntil([rtu] { return rtu->GetRtuStatus().requests == 2; }));
    EXPECT_TRUE(channel->IsConnect());
    stop();
    EXPECT_EQ(link->openCount(), 2);
    EXPECT_EQ(linesAt(LogLevel::Success), (QStringList{primaryConnected, primaryConnected}));
}

TEST_F(ChannelLoop, NeverClosesTheLinkOrSpeaksOfADisconnectItself) {
    ControllerLink* link = setLink();
    addPollingRtu(1, 5);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(1));
    channel->SetConnect(false);
    ASSERT_TRUE(link->waitForOpens(2));
    stop();
    EXPECT_EQ(link->closeCount(), 0);
    EXPECT_EQ(linesAt(LogLevel::LinkFailure), QStringList{});
}

TEST_F(ChannelLoop, ReconnectsAfterAnEthernetControllerKeptSilent) {
    ControllerLink* link = setLink();
    link->keepSilent();
    const CRtu* rtu = addPollingRtu(1, 5);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(3));
    ASSERT_TRUE(waitUntil([rtu] { return rtu->GetRtuStatus().errors >= 2; }));
    stop();
    EXPECT_GE(link->openCount(), 3);
    EXPECT_GE(linesAt(LogLevel::Success).count(primaryConnected), 3);
}

TEST_F(ChannelLoop, WithoutALinkIsSilentButStillChecksTheScans) {
    addPollingRtu(1, 5);
    countScans();
    log.clear();
    startWith(ethernet);
    EXPECT_TRUE(waitUntil([this] { return scanClockReadings >= 1; }));
    const int afterFirstTurn = scanClockReadings;
    EXPECT_TRUE(waitUntil([&] { return scanClockReadings > afterFirstTurn; }));
    stop();
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChannelLoop, OfAnUnknownTypeWithoutALinkRunsAndEnds) {
    addPollingRtu(1, 5);
    countScans();
    startWith(94023);
    EXPECT_TRUE(waitUntil([this] { return scanClockReadings >= 1; }));
    stop();
    EXPECT_TRUE(channel->isFinished());
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelLoop, EndsOnShutdownWhileConnected) {
    ControllerLink* link = setLink();
    addPollingRtu(1, 5);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForTelegrams(1));
    stop();
    EXPECT_TRUE(channel->isFinished());
    EXPECT_TRUE(channel->IsConnect()) << "only closing takes the connection back";
    channel->CloseChannel();
    EXPECT_FALSE(channel->IsConnect());
    EXPECT_GE(link->closeCount(), 1);
}

TEST_F(ChannelLoop, EndsOnShutdownWhileItsLinkDoesNotOpen) {
    ControllerLink* link = setLink();
    link->failOpens(1000);
    startWith(ethernet);
    ASSERT_TRUE(link->waitForOpens(1));
    stop();
    EXPECT_TRUE(channel->isFinished());
    EXPECT_FALSE(channel->IsConnect());
}

TEST_F(ChannelLoop, GoesOnTurningOnALineOfAnUnknownType) {
    countScans();
    channel->SetConnect(true); // a host's doing: such a line never connects by itself
    startWith(0);
    EXPECT_TRUE(waitUntil([this] { return scanClockReadings >= 3; }));
    stop();
    EXPECT_TRUE(channel->IsConnect());
}
