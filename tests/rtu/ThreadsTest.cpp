#include "AnalogWriteListBench.h"

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Host threads give polls and commands to an RTU whose channel is at work.
class ThreadsTest : public AnalogWriteListBench {
protected:
    static constexpr int rounds = 200;

    // Runs each of `works` for as many rounds on a thread of its own, and the channel's turns beside them
    // until nothing is pending any more.
    template <typename... Works>
    void runTogether(Works... works) {
        std::atomic<int> busy{sizeof...(works)};
        std::vector<std::thread> threads;
        (threads.emplace_back([&busy, works] {
            for (int round = 0; round < rounds; ++round)
                works();
            --busy;
        }),
         ...);
        while (busy > 0)
            protocol->processNextRequest();
        for (std::thread& thread : threads)
            thread.join();
        for (std::size_t turn = 0; turn < sizeof...(works) * rounds; ++turn)
            protocol->processNextRequest();
    }
};

} // namespace

TEST_F(ThreadsTest, PollsListsAndClockWritesOfSeveralThreadsAllArriveWhole) {
    list("R", 1, 40);
    addStatus(100, "I7");
    rtu->InitRtu();
    const Items poll{readItem(3, 7, 0), readItem(6, 1, 39)};
    const Items listed{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 9, words(32, 9))};
    BenchClock::set(QDateTime(QDate(2024, 1, 1), QTime(0, 0)).toMSecsSinceEpoch(), 0);
    const SBusRequestItem clockWrite = writeItem(12, 0, 0, hex("01 01 24 01 01 00 00 00"));

    const auto polling = [this] { EXPECT_EQ(rtu->RequestPoll(0, nullptr), accepted); };
    const auto listing = [this] { EXPECT_EQ(write(), accepted); };
    const auto setting = [this] { EXPECT_EQ(rtu->timeSync(nullptr), accepted); };
    runTogether(polling, listing, setting, polling, listing, setting);

    QMap<QString, Items> sent;
    for (const RecordingProtocol::Exchange& exchange : protocol->exchanges)
        sent[exchange.poll] << exchange.item;
    EXPECT_EQ(sent.keys(), (QStringList{"Analog Write List", "Integrity poll", "Time Sync Command"}));
    const auto expectRepeated = [&](const char* name, const Items& telegrams) {
        const Items& items = sent[QString::fromLatin1(name)];
        EXPECT_EQ(items.size() % telegrams.size(), 0) << name;
        for (int i = 0; i < items.size(); ++i)
            ASSERT_EQ(items[i], telegrams[i % telegrams.size()]) << name << ' ' << i;
    };
    expectRepeated("Integrity poll", poll);
    expectRepeated("Analog Write List", listed);
    expectRepeated("Time Sync Command", {clockWrite});
}

TEST_F(ThreadsTest, RepliesOfSeveralThreadsAreCompletedOrLeftToTheChannel) {
    list("R", 1, 3);
    rtu->InitRtu();
    std::atomic<int> completed{0};
    const auto replied = [&](const Command& command) {
        return [this, command, &completed] {
            auto* reply = new CReply(&channel);
            EXPECT_EQ(command(reply), accepted);
            // A reply whose request was displaced, or dropped, is never completed.
            if (const auto result = reply->wait(2)) {
                EXPECT_EQ(*result, Halvex::DriverErrorResult::Success);
                ++completed;
            }
        };
    };
    runTogether(replied([this](CReply* reply) { return request(Halvex::PollKind::Analog, reply); }),
                replied([this](CReply* reply) { return write(reply); }),
                replied([this](CReply* reply) { return rtu->timeSync(reply); }));
    EXPECT_GT(completed, 0);
}
