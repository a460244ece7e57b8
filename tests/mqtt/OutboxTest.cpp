#include "services/mqtt/Outbox.h"
#include "SmallSite.h"
#include "services/mqtt/ReconnectPauses.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class OutboxTest : public testing::Test {
protected:
    OutboxTest() { backlog.open(); }

    static std::vector<PointChange> changes(int first, int last) {
        std::vector<PointChange> list;
        for (int value = first; value <= last; ++value)
            list.push_back({2, {double(value), 1, 1, PointQuality::Good, 0}});
        return list;
    }
    // Gives the next ones away, each as a message of its own.
    std::vector<double> send(Outbox& outbox, std::size_t most = 100) {
        std::vector<ToldChange> next;
        outbox.peek(next, most);
        std::vector<double> values;
        for (const ToldChange& one : next) {
            values.push_back(one.state.value);
            outbox.noteSent(++lastId, 1);
        }
        return values;
    }
    void acknowledge(Outbox& outbox, int first, int last) {
        for (int id = first; id <= last; ++id)
            outbox.noteAcknowledged(id);
        outbox.settle();
    }

    const QTemporaryDir folder;
    const Site site = smallSite();
    const PointTable points{site};
    ChangeBacklog backlog{points, folder.filePath(QStringLiteral("changes.db")).toStdString(), 10'000'000};
    int lastId = 0;
};

} // namespace

TEST_F(OutboxTest, PassesThroughMemoryAloneNearTheBroker) {
    Outbox outbox(&backlog);
    outbox.noteConnected();
    outbox.add(changes(1, 3));
    EXPECT_EQ(backlog.size(), 0U);
    EXPECT_THAT(send(outbox), ElementsAre(1, 2, 3));
    EXPECT_THAT(send(outbox), IsEmpty());
    acknowledge(outbox, 1, 3);
    EXPECT_TRUE(outbox.isEmpty());
    EXPECT_EQ(backlog.size(), 0U);
}

TEST_F(OutboxTest, KeepsOnTheDiskWhatComesWhileTheBrokerIsAway) {
    Outbox outbox(&backlog);
    outbox.add(changes(1, 3));
    EXPECT_EQ(outbox.kept(), 3U);
    EXPECT_THAT(send(outbox), IsEmpty());
    outbox.noteConnected();
    std::vector<ToldChange> next;
    outbox.peek(next, 1);
    EXPECT_TRUE(next.at(0).isHistorical);
    EXPECT_THAT(send(outbox), ElementsAre(1, 2, 3));
    EXPECT_EQ(outbox.kept(), 3U) << "until it is acknowledged";
    acknowledge(outbox, 1, 3);
    EXPECT_EQ(outbox.kept(), 0U);
}

TEST_F(OutboxTest, GivesAgainWhatWasNotAcknowledgedBeforeWhatCameLater) {
    Outbox outbox(&backlog);
    outbox.noteConnected();
    outbox.add(changes(1, 4));
    send(outbox);
    acknowledge(outbox, 1, 2);
    outbox.noteAway();
    outbox.add(changes(5, 6));
    outbox.noteConnected();
    EXPECT_THAT(send(outbox), ElementsAre(3, 4, 5, 6));
}

TEST_F(OutboxTest, GivesAgainFromTheFirstThatWasNotAcknowledgedOn) {
    Outbox outbox(&backlog);
    outbox.noteConnected();
    outbox.add(changes(1, 3));
    send(outbox);
    acknowledge(outbox, 2, 3);
    outbox.noteAway();
    outbox.noteConnected();
    EXPECT_THAT(send(outbox), ElementsAre(1, 2, 3));
}

TEST_F(OutboxTest, PutsNewChangesBehindThoseOnTheDisk) {
    Outbox outbox(&backlog);
    outbox.add(changes(1, 2));
    outbox.noteConnected();
    outbox.add(changes(3, 4));
    EXPECT_THAT(send(outbox), ElementsAre(1, 2, 3, 4));
    outbox.add(changes(5, 5));
    EXPECT_THAT(send(outbox), ElementsAre(5));
    acknowledge(outbox, 1, 5);
    EXPECT_TRUE(outbox.isEmpty());
}

TEST_F(OutboxTest, LaysOnTheDiskWhatDoesNotFitIntoMemory) {
    Outbox outbox(&backlog, 10);
    outbox.noteConnected();
    outbox.add(changes(1, 8));
    outbox.add(changes(9, 16));
    outbox.add(changes(17, 17));
    EXPECT_EQ(backlog.size(), 9U);
    std::vector<double> all;
    for (std::vector<double> some = send(outbox, 3); !some.empty(); some = send(outbox, 3))
        all.insert(all.end(), some.begin(), some.end());
    ASSERT_EQ(all.size(), 17U);
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
}

TEST_F(OutboxTest, BreaksAndGoesOnAgainAndAgainInOrder) {
    Outbox outbox(&backlog, 10);
    int next = 1;
    double last = 0;
    for (int round = 0; round < 20; ++round) {
        outbox.noteConnected();
        outbox.add(changes(next, next + 6));
        next += 7;
        const int firstId = lastId + 1;
        for (const double value : send(outbox, 9)) {
            EXPECT_LE(value, last + 1) << "none is left out";
            last = std::max(last, value);
        }
        acknowledge(outbox, firstId, lastId - 3);
        if (round % 3 == 0)
            outbox.noteAway();
    }
    outbox.noteConnected();
    for (std::vector<double> some = send(outbox); !some.empty(); some = send(outbox))
        last = some.back();
    EXPECT_EQ(last, next - 1);
}

TEST_F(OutboxTest, DoesNotKeepCurrentValues) {
    Outbox outbox(&backlog);
    outbox.noteConnected();
    outbox.addCurrent(changes(1, 2));
    outbox.add(changes(3, 3));
    outbox.noteAway();
    EXPECT_EQ(outbox.kept(), 1U);
    outbox.noteConnected();
    EXPECT_THAT(send(outbox), ElementsAre(3));
}

TEST_F(OutboxTest, GoesOnWithWhatAnEarlierProcessHasLeft) {
    {
        Outbox outbox(&backlog);
        outbox.add(changes(1, 2));
    }
    Outbox outbox(&backlog);
    outbox.add(changes(3, 3));
    outbox.noteConnected();
    EXPECT_THAT(send(outbox), ElementsAre(1, 2, 3));
}

TEST_F(OutboxTest, DropsTheOldestWhereThereIsNoDisk) {
    Outbox outbox(nullptr, 3);
    outbox.add(changes(1, 5));
    EXPECT_EQ(outbox.dropped(), 2U);
    outbox.noteConnected();
    EXPECT_THAT(send(outbox), ElementsAre(3, 4, 5));
    outbox.noteAway();
    outbox.noteConnected();
    EXPECT_THAT(send(outbox), ElementsAre(3, 4, 5)) << "none was acknowledged";
}

TEST_F(OutboxTest, CountsWhatCannotBeSent) {
    Outbox outbox(&backlog);
    outbox.noteConnected();
    outbox.add(changes(1, 2));
    std::vector<ToldChange> next;
    outbox.peek(next, 1);
    outbox.noteUnsendable(1);
    EXPECT_EQ(outbox.dropped(), 1U);
    EXPECT_THAT(send(outbox), ElementsAre(2));
}

TEST(ReconnectPauses, Grow) {
    ReconnectPauses pauses({1s, 5s, 10s});
    ReconnectPauses::Time now{};
    std::vector<std::chrono::seconds> all;
    for (int i = 0; i < 5; ++i)
        all.push_back(std::chrono::duration_cast<std::chrono::seconds>(pauses.noteEnd(now) - now));
    EXPECT_THAT(all, ElementsAre(1s, 2s, 4s, 5s, 5s));
}

TEST(ReconnectPauses, AreShortAgainBehindAConnectionThatHasStood) {
    ReconnectPauses pauses({1s, 60s, 10s});
    ReconnectPauses::Time now{};
    pauses.noteEnd(now);
    pauses.noteEnd(now);
    pauses.noteConnected(now);
    EXPECT_EQ(pauses.noteEnd(now + 9s) - (now + 9s), 4s) << "it has not";
    pauses.noteConnected(now + 20s);
    EXPECT_EQ(pauses.noteEnd(now + 30s) - (now + 30s), 1s);
}
