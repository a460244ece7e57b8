// Lines that are cut again and again while commands and pulses are under way.

#include "ManyLines.h"
#include "Soak.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

using Halvex::DriverErrorResult;
using host::SetPoint;
using host::SwitchPoint;
using sim::Media;
using namespace std::chrono_literals;

namespace {

constexpr unsigned firstOutput = 32;
constexpr unsigned outputs = 4;    // points 100, 101, ...; all pulse points
constexpr unsigned registers = 10; // points 0, 1, ...
constexpr unsigned firstPulse = 100;

// The results of one line's commands, each counted. Any thread.
class Results {
public:
    explicit Results(std::size_t most) : ends(most) {}

    host::CommandDone note(std::size_t command) {
        return [this, command](const host::CommandEnd& end) {
            ++ends[command];
            ++(end.result == DriverErrorResult::Success ? successes : failures);
        };
    }

    std::vector<std::atomic<int>> ends; // of each command
    std::atomic<unsigned> successes{0};
    std::atomic<unsigned> failures{0};
};

std::chrono::milliseconds upTo(std::mt19937& random, unsigned most) {
    return std::chrono::milliseconds(random() % (most + 1));
}

// Most cuts are over before the line is tried again, some last until after it.
void cutAgainAndAgain(ManyLines& plant, int line, unsigned cuts) {
    std::mt19937 random(static_cast<unsigned>(line));
    for (unsigned i = 0; i < cuts; ++i) {
        plant.controllers().cut(line);
        std::this_thread::sleep_for(upTo(random, i % 4 == 0 ? 100 : 5));
        ASSERT_EQ(plant.controllers().restore(line), "");
        std::this_thread::sleep_for(upTo(random, 300));
    }
}

// Gives commands until told to end, no more than a few at a time. Returns how many.
std::size_t command(ManyLines& plant, int line, Results& results, const std::atomic<bool>& isOver) {
    constexpr std::size_t mostAtOnce = 8;
    std::mt19937 random(static_cast<unsigned>(1000 + line));
    std::size_t given = 0;
    while (!isOver && given < results.ends.size()) {
        if (given - results.successes - results.failures >= mostAtOnce) {
            std::this_thread::sleep_for(2ms);
            continue;
        }
        const bool isPulse = random() % 2 == 0;
        const auto action =
            isPulse ? host::CommandAction(SwitchPoint{firstPulse + unsigned(random() % outputs), true})
                    : host::CommandAction(
                          SetPoint{unsigned(random() % registers), static_cast<double>(random() % 1000)});
        EXPECT_EQ(plant.commands().submit(ManyLines::command(line, action), results.note(given)), "");
        ++given;
        std::this_thread::sleep_for(upTo(random, 40));
    }
    return given;
}

bool allOutputsAreOff(ManyLines& plant) {
    for (int line = 1; line <= plant.count(); ++line)
        for (const std::uint32_t output : plant.memory(line).get(Media::Outputs, firstOutput, outputs))
            if (output != 0)
                return false;
    return true;
}

std::uint64_t writesInAll(ManyLines& plant) {
    std::uint64_t writes = 0;
    for (int line = 1; line <= plant.count(); ++line)
        writes += plant.controllers().counts(line).writesInAll;
    return writes;
}

// Off, and nothing more on its way: no write comes for longer than the widest pulse and two polls.
bool becomeQuietAndOff(ManyLines& plant) {
    std::uint64_t writes = 0;
    return Plant::eventually([&] {
        std::this_thread::sleep_for(2s);
        const std::uint64_t before = std::exchange(writes, writesInAll(plant));
        return before == writes && allOutputsAreOff(plant);
    });
}

} // namespace

TEST(LinkCuts, EveryCommandEndsOnceAndEveryPulseEndsOff) {
    const std::size_t lines = soak::count<std::size_t>(6, 20);
    const unsigned cutsOfEach = soak::count(5U, 50U);
    constexpr std::size_t mostCommands = 100'000;
    ManyLines plant(ManyLines::mixed(lines));
    for (int line = 1; line <= plant.count(); ++line) {
        plant.addRegisters(line, registers);
        for (unsigned i = 0; i < outputs; ++i)
            plant.addPoint(line, firstPulse + i, {'O', firstOutput + i}).pulseMs = 50 + 100 * i;
    }
    plant.start();

    std::atomic<bool> isOver{false};
    std::vector<std::unique_ptr<Results>> results;
    std::vector<std::size_t> given(lines);
    std::vector<std::thread> cutters;
    std::vector<std::thread> operators;
    for (int line = 1; line <= plant.count(); ++line) {
        const auto index = static_cast<std::size_t>(line - 1);
        results.push_back(std::make_unique<Results>(mostCommands));
        Results& own = *results.back();
        operators.emplace_back([&, line, index] { given[index] = command(plant, line, own, isOver); });
        cutters.emplace_back([&plant, line, cutsOfEach] { cutAgainAndAgain(plant, line, cutsOfEach); });
    }
    for (std::thread& cutter : cutters)
        cutter.join();
    isOver = true;
    for (std::thread& one : operators)
        one.join();

    unsigned successes = 0;
    unsigned failures = 0;
    for (std::size_t i = 0; i < lines; ++i) {
        const bool allHaveEnded =
            Plant::eventually([&] { return results[i]->successes + results[i]->failures >= given[i]; });
        EXPECT_TRUE(allHaveEnded) << "line " << i + 1;
        successes += results[i]->successes;
        failures += results[i]->failures;
    }
    EXPECT_TRUE(becomeQuietAndOff(plant));
    plant.stop();
    for (std::size_t i = 0; i < lines; ++i)
        for (std::size_t j = 0; j < results[i]->ends.size(); ++j)
            EXPECT_EQ(results[i]->ends[j], j < given[i] ? 1 : 0) << "line " << i + 1 << ", command " << j;
    EXPECT_GT(successes, lines * cutsOfEach / 5);
    EXPECT_GT(failures, 0U);
    soak::tellFigures(std::to_string(lines * cutsOfEach) + " cuts, " + std::to_string(successes + failures) +
                      " commands, of which " + std::to_string(successes) + " succeeded");
}
