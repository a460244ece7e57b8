#include "ScriptedLink.h"
#include "TaskChannel.h"

#include <gtest/gtest.h>

namespace {

using Kinds = QVector<int>;

// A connected channel and the clock of its scans. With one RTU and equal periods of 900 ms its kinds 0, 1, 2
// are first due at 0, 300 and 600 ms.
class CChannelScan : public testing::Test {
protected:
    CChannelScan() {
        channel.SetScanClock([this] { return now; });
        channel.SetConnect(true);
    }

    void checkAt(qint64 time) {
        now = time;
        channel.CheckScan();
    }

    static constexpr ScanPeriods periods{900, 900, 900};
    qint64 now = 0;
    TaskChannel channel;
};

class NotingTaker : public PollTaker {
public:
    void takeTurn(const std::vector<DuePoll>& due) override {
        ++turns;
        for (const DuePoll& poll : due)
            kinds << poll.kind;
    }

    int turns = 0;
    Kinds kinds;
};

} // namespace

TEST_F(CChannelScan, AsksForThePollsThatAreDue) {
    TestRtu* rtu = channel.addRtu(1, periods);
    checkAt(0);
    EXPECT_EQ(rtu->polls, (Kinds{0}));
    checkAt(299);
    EXPECT_EQ(rtu->polls, (Kinds{0}));
    checkAt(300);
    checkAt(600);
    checkAt(900);
    EXPECT_EQ(rtu->polls, (Kinds{0, 1, 2, 0}));
}

TEST_F(CChannelScan, LateScanIsAskedOnceAndCountsOverruns) {
    TestRtu* rtu = channel.addRtu(1, periods);
    for (const qint64 time : {0, 300, 600})
        checkAt(time);
    rtu->polls.clear();
    checkAt(3600); // kind 0 was due at 900, 1800, 2700 and 3600; kinds 1 and 2 three times each
    EXPECT_EQ(rtu->polls, (Kinds{0, 1, 2}));
    EXPECT_EQ(channel.GetChannelStatus().scanOverruns, 3U + 2U + 2U);
}

TEST_F(CChannelScan, ASilentRtuIsAskedForItsMostFrequentKindAlone) {
    channel.SetLinks(std::make_unique<ScriptedLink>());
    TestRtu* silent = channel.addRtu(1, {9'000, 900, 300});
    TestRtu* other = channel.addRtu(2, {9'000, 900, 300});
    silent->PutRtuStatus(false, false, 0, 0, 1, 0);
    for (qint64 time = 0; time < 3'000; time += 10)
        checkAt(time);
    EXPECT_EQ(silent->polls.count(0), 0);
    EXPECT_EQ(silent->polls.count(1), 0);
    EXPECT_EQ(silent->polls.count(2), 6); // from 1,000 ms on, its time-out
    EXPECT_EQ(other->polls.count(1), 3);
    EXPECT_EQ(other->polls.count(2), 10);

    silent->PutRtuStatus(true, true, 0, 1, 0, 0);
    silent->polls.clear();
    for (qint64 time = 3'000; time < 3'900; time += 10)
        checkAt(time);
    EXPECT_EQ(silent->polls.count(1), 1);
    EXPECT_EQ(silent->polls.count(2), 3);
}

// As when each of its time-outs closes the line, and the driver polls it when the line is open again.
TEST_F(CChannelScan, ASilentRtuIsNotAskedWhileItsRequestsEnd) {
    channel.SetLinks(std::make_unique<ScriptedLink>());
    TestRtu* silent = channel.addRtu(1, periods);
    channel.addRtu(2, periods);
    for (qint64 time = 0; time < 5'000; time += 500) {
        silent->PutRtuStatus(false, false, 0, 0, 0, 1);
        checkAt(time);
    }
    EXPECT_TRUE(silent->polls.isEmpty());
}

TEST_F(CChannelScan, ASilentRtuThatHasItsLineToItselfIsAskedAsEver) {
    channel.SetLinks(std::make_unique<ScriptedLink>());
    TestRtu* silent = channel.addRtu(1, periods);
    for (const qint64 time : {0, 300, 600}) {
        silent->PutRtuStatus(false, false, 0, 0, 1, 0);
        checkAt(time);
    }
    EXPECT_EQ(silent->polls, (Kinds{0, 1, 2}));
}

TEST_F(CChannelScan, RtuThatTakesASilentOnesPlaceIsAskedAsEver) {
    channel.SetLinks(std::make_unique<ScriptedLink>());
    channel.addRtu(2, periods);
    channel.addRtu(1, periods)->PutRtuStatus(false, false, 0, 0, 1, 0);
    TestRtu* replacement = channel.addRtu(1, periods);
    for (const qint64 time : {0, 150, 300})
        checkAt(time);
    EXPECT_EQ(replacement->polls, (Kinds{0, 1, 2}));
}

TEST_F(CChannelScan, DisabledRtuIsNotAsked) {
    TestRtu* disabled = channel.addRtu(1, periods, false);
    TestRtu* enabled = channel.addRtu(2, periods);
    checkAt(0);
    checkAt(900);
    EXPECT_TRUE(disabled->polls.isEmpty());
    EXPECT_EQ(enabled->polls, (Kinds{0, 1, 2, 0}).mid(0, enabled->polls.size()));
    EXPECT_FALSE(enabled->polls.isEmpty());
}

TEST_F(CChannelScan, NothingIsAskedWhileNotConnected) {
    TestRtu* rtu = channel.addRtu(1, periods);
    channel.SetConnect(false);
    for (qint64 time = 0; time < 10'000; time += 10)
        checkAt(time);
    EXPECT_TRUE(rtu->polls.isEmpty());
}

TEST_F(CChannelScan, PollingResumesAfterADisconnectWithoutABurstOrOverruns) {
    TestRtu* rtu = channel.addRtu(1, periods);
    channel.SetConnect(false);
    checkAt(0);
    channel.SetConnect(true);
    checkAt(10'000);
    EXPECT_TRUE(rtu->polls.isEmpty());
    checkAt(10'200); // kind 1 is due at 300 + 11 * 900
    EXPECT_EQ(rtu->polls, (Kinds{1}));
    EXPECT_EQ(channel.GetChannelStatus().scanOverruns, 0U);
}

TEST_F(CChannelScan, RtuAddedLaterIsScanned) {
    channel.addRtu(1, periods);
    checkAt(0);
    TestRtu* added = channel.addRtu(2, periods);
    for (qint64 time = 10; time <= 910; time += 10)
        checkAt(time);
    EXPECT_EQ(added->polls, (Kinds{0, 1, 2}));
}

TEST_F(CChannelScan, ReloadedScanStartsTheScheduleAnew) {
    TestRtu* rtu = channel.addRtu(1, periods);
    checkAt(0);
    rtu->polls.clear();
    rtu->ReloadScan();
    checkAt(100);
    EXPECT_EQ(rtu->polls, (Kinds{0}));
    checkAt(400);
    EXPECT_EQ(rtu->polls, (Kinds{0, 1}));
}

TEST(CChannelScanClock, RunsOnASteadyClockByItself) {
    TaskChannel channel;
    channel.SetConnect(true);
    TestRtu* rtu = channel.addRtu(1, {1, 0, 0});
    while (rtu->polls.size() < 3)
        channel.CheckScan();
    EXPECT_EQ(rtu->polls.first(), 0);
}

TEST_F(CChannelScan, LeavesThePollsThatAreDueToTheTaker) {
    NotingTaker taker;
    channel.SetPollTaker(&taker);
    TestRtu* rtu = channel.addRtu(1, periods);
    checkAt(0);
    checkAt(300);
    EXPECT_EQ(taker.kinds, (Kinds{0, 1}));
    EXPECT_TRUE(rtu->polls.isEmpty());
}

TEST_F(CChannelScan, GivesTheTakerItsTurnWhileNotConnectedToo) {
    NotingTaker taker;
    channel.SetPollTaker(&taker);
    channel.addRtu(1, periods);
    channel.SetConnect(false);
    checkAt(0);
    EXPECT_EQ(taker.turns, 1);
    EXPECT_TRUE(taker.kinds.isEmpty());
}

TEST_F(CChannelScan, TheTakerHearsOfSilentRtusToo) {
    NotingTaker taker;
    channel.SetPollTaker(&taker);
    channel.SetLinks(std::make_unique<ScriptedLink>());
    TestRtu* silent = channel.addRtu(1, periods);
    channel.addRtu(2, {0, 0, 0});
    silent->PutRtuStatus(false, false, 0, 0, 1, 0);
    for (qint64 time = 0; time < 900; time += 10)
        checkAt(time);
    EXPECT_EQ(taker.kinds, (Kinds{0, 1, 2}));
}

TEST_F(CChannelScan, ARequestWithoutATelegramSaysNothingAboutTheLineOfATaker) {
    NotingTaker taker;
    channel.SetPollTaker(&taker);
    channel.SetLinks(std::make_unique<ScriptedLink>());
    TestRtu* silent = channel.addRtu(1, periods);
    silent->PutRtuStatus(false, false, 0, 0, 1, 0);
    silent->PutRtuStatus(true, true, 0, 1, 0, 0);
    EXPECT_TRUE(channel.IsSilent(1));
}
