// What a host in service does with commands: many at once, pulses on a busy line, clocks, an end in between.

#include "CommandedPlant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <thread>

using Halvex::DriverErrorResult;
using host::SetPoint;
using host::SwitchPoint;
using sim::Media;
using testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

constexpr auto success = DriverErrorResult::Success;
constexpr int lineId = CommandedPlant::lineId;

using Element = std::pair<Media, unsigned>;

std::map<Element, std::vector<std::uint32_t>> writesByElement(const sim::LineCounts& counts) {
    std::map<Element, std::vector<std::uint32_t>> values;
    for (const sim::WriteRecord& write : counts.writes)
        values[{write.media, write.address}].push_back(write.value);
    return values;
}

} // namespace

// Of each thread: four registers and a flag, which it commands in turns.
TEST(RunningHost, TenThousandCommandsFromFourThreadsAreCarriedOutOnceAndInOrder) {
    constexpr unsigned threads = 4;
    constexpr unsigned pointsOfEach = 5;
    constexpr unsigned commandsOfEach = 2'500;
    sim::Options options;
    options.records = 20'000;
    CommandedPlant plant(LineType::Ethernet, options);
    plant.pollSeldom();
    plant.rtu().timeout = 30s; // nothing is lost; a busy machine may be slow
    for (unsigned point = 0; point < threads * pointsOfEach; ++point)
        plant.addPoint(point, {point % pointsOfEach == 4 ? 'F' : 'R', point * 3});
    plant.start();

    std::atomic<unsigned> results{0};
    std::atomic<unsigned> successes{0};
    std::map<Element, std::vector<std::uint32_t>> expected;
    std::vector<std::thread> operators;
    for (unsigned thread = 0; thread < threads; ++thread) {
        for (unsigned i = 0; i < commandsOfEach; ++i) {
            const unsigned point = thread * pointsOfEach + i % pointsOfEach;
            const bool isFlag = i % pointsOfEach == 4;
            expected[{isFlag ? Media::Flags : Media::Registers, point * 3}].push_back(isFlag ? i & 1 : i);
        }
        operators.emplace_back([&, thread] {
            for (unsigned i = 0; i < commandsOfEach; ++i) {
                const unsigned point = thread * pointsOfEach + i % pointsOfEach;
                const host::Command command = CommandedPlant::command(
                    i % pointsOfEach == 4 ? host::CommandAction(SwitchPoint{point, (i & 1) != 0})
                                          : host::CommandAction(SetPoint{point, static_cast<double>(i)}));
                const auto done = [&](const host::CommandEnd& end) {
                    successes += end.result == success ? 1 : 0;
                    ++results;
                };
                while (!plant.commands().submit(command, done).empty()) // the queue is full
                    std::this_thread::sleep_for(5ms);
            }
        });
    }
    for (std::thread& one : operators)
        one.join();
    // 1,000 are left at most, which the driver carries out one in each of its turns of 10 ms.
    EXPECT_TRUE(Plant::eventually([&] { return results == threads * commandsOfEach; }));
    plant.stop();
    EXPECT_EQ(results, threads * commandsOfEach);
    EXPECT_EQ(successes, threads * commandsOfEach);
    const sim::LineCounts counts = plant.controllers().counts(lineId);
    EXPECT_EQ(counts.writesInAll, threads * commandsOfEach);
    EXPECT_EQ(writesByElement(counts), expected);
}

// Releases fall due while polls keep the line, and of those only one at a time finds a place in the driver's
// table.
TEST(RunningHost, EveryPulseOnABusySerialLineEnds) {
    constexpr unsigned outputs = 20;
    sim::Options options;
    options.pace = true;
    CommandedPlant plant(LineType::SerialDataMode, options, 9'600);
    plant.rtu().scan.status = 300ms;
    plant.rtu().scan.analog = 500ms;
    for (unsigned output = 0; output < outputs; ++output)
        plant.addPoint(output, {'O', 32 + output}).pulseMs = 200 + 50 * output;
    for (unsigned i = 0; i < 60; ++i) // a poll of a quarter of a second
        plant.addPoint(100 + i, {'R', i});
    plant.start();

    std::mt19937 random(11);
    std::atomic<unsigned> results{0};
    std::atomic<unsigned> successes{0};
    for (unsigned pulse = 0; pulse < 200; ++pulse) {
        const host::Command command =
            CommandedPlant::command(SwitchPoint{static_cast<unsigned>(random() % outputs), true});
        ASSERT_EQ(plant.commands().submit(command,
                                          [&](const host::CommandEnd& end) {
                                              successes += end.result == success ? 1 : 0;
                                              ++results;
                                          }),
                  "");
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 60));
    }
    ASSERT_TRUE(Plant::eventually([&] { return results == 200; }));
    EXPECT_GT(successes, 100U); // a busy machine may break an answer off

    const auto allAreOff = [&] {
        const std::vector<std::uint32_t> states = plant.memory().get(Media::Outputs, 32, outputs);
        return std::count(states.begin(), states.end(), 0U) == static_cast<int>(outputs);
    };
    // Off, and nothing more on its way: the widest pulse is over, and no write comes for a while.
    std::uint64_t writes = 0;
    const bool isQuiet = Plant::eventually([&] {
        std::this_thread::sleep_for(2s);
        const std::uint64_t before = std::exchange(writes, plant.controllers().counts(lineId).writesInAll);
        return allAreOff() && before == writes;
    });
    EXPECT_TRUE(isQuiet);
    EXPECT_TRUE(allAreOff());
    EXPECT_THAT(plant.messages(), testing::Contains(HasSubstr("it is commanded off")));
}

TEST(RunningHost, SetsTheClockOfAnRtuThatAsksForIt) {
    CommandedPlant plant(LineType::SerialDataMode);
    plant.rtu().timeSync = 300ms;
    plant.addPoint(1, {'R', 1});
    plant.rtu().scan.analog = 50ms;
    plant.start();
    EXPECT_TRUE(
        Plant::eventually([&] { return plant.controllers().counts(lineId).clockSettings.size() >= 3; }));
    EXPECT_THAT(plant.messages(), testing::IsEmpty());
}

TEST(RunningHost, LeavesClocksOnEthernetAlone) {
    CommandedPlant plant(LineType::Ethernet);
    plant.rtu().timeSync = 50ms;
    plant.addPoint(1, {'R', 1});
    plant.rtu().scan.analog = 50ms;
    plant.start();
    EXPECT_TRUE(Plant::eventually([&] { return plant.controllers().counts(lineId).telegrams > 20; }));
    EXPECT_THAT(plant.messages(), testing::IsEmpty()); // no answer was missed
    EXPECT_TRUE(plant.reads(1, 0));
}

TEST(RunningHost, AStopEndsEveryCommandOnce) {
    CommandedPlant plant(LineType::SerialDataMode);
    plant.addPoint(1, {'R', 1});
    plant.start();
    std::atomic<unsigned> results{0};
    std::atomic<unsigned> successes{0};
    unsigned taken = 0;
    for (unsigned i = 0; i < 500; ++i)
        taken += plant.commands()
                     .submit(CommandedPlant::command(SetPoint{1, static_cast<double>(i)}),
                             [&](const host::CommandEnd& end) {
                                 successes += end.result == success ? 1 : 0;
                                 ++results;
                             })
                     .empty();
    EXPECT_EQ(taken, 500U);
    ASSERT_TRUE(Plant::eventually([&] { return successes >= 20; }));
    plant.stop();
    EXPECT_EQ(results, 500U);
    // The one in progress may have reached the controller, whose answer nobody waited for.
    const std::uint64_t writes = plant.controllers().counts(lineId).writesInAll;
    EXPECT_GE(writes, successes);
    EXPECT_LE(writes, successes + 1);
}
