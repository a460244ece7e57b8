#include "TroubledLines.h"

#include "Soak.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <sstream>
#include <thread>

using host::SetPoint;
using sim::Media;
using namespace std::chrono_literals;

namespace {

constexpr unsigned firstFlagPoint = 100;
constexpr unsigned commandValues = 200;

std::vector<LineType> dataModeAndBreakMode(int lines) {
    std::vector<LineType> types;
    for (int i = 0; i < lines; ++i)
        types.push_back(i % 2 == 0 ? LineType::SerialDataMode : LineType::SerialBreakMode);
    return types;
}

// A pattern without a byte of 0 or one like the other.
bool isFlagOn(unsigned flag) {
    constexpr unsigned pattern = 0x9A5C63;
    return (pattern >> flag & 1) != 0;
}

// What the controllers' one commanded register may hold: no byte of it is 0 either.
double commandedValue(unsigned command) {
    return static_cast<double>(0x1F2F3F01U + command % commandValues);
}

} // namespace

TroubledLines::TroubledLines(int lines)
    : plant(dataModeAndBreakMode(lines)), results(static_cast<std::size_t>(lines)),
      given(static_cast<std::size_t>(lines)) {
    for (int line = 1; line <= lines; ++line)
        prepare(line);
    renewValues();
    plant.listen(judge);
}

void TroubledLines::prepare(int line) {
    host::SerialEnd end;
    end.device = relay.addLine(plant.controllers().device(line));
    end.baud = 115'200;
    plant.line(line).primary = end;
    plant.rtu(line).timeout = 250ms;
    plant.rtu(line).scan = {500ms, 20ms, 20ms};
    plant.addRegisters(line, codedRegisters);
    plant.addPoint(line, commandedRegister, {'R', commandedRegister});
    plant.memory(line).set(Media::Registers, commandedRegister,
                           static_cast<std::uint32_t>(commandedValue(0)));
    for (unsigned command = 0; command < commandValues; ++command)
        judge.allow(line, commandedRegister, commandedValue(command));
    for (unsigned flag = 0; flag < flags; ++flag) {
        plant.addPoint(line, firstFlagPoint + flag, {'F', flag});
        plant.memory(line).set(Media::Flags, flag, isFlagOn(flag) ? 1 : 0);
        judge.allow(line, firstFlagPoint + flag, isFlagOn(flag) ? 1 : 0);
    }
}

// The judge hears of it first: a poll may see the new values at once.
void TroubledLines::renewValues() {
    ++generation;
    std::vector<std::uint32_t> words;
    for (unsigned i = 0; i < codedRegisters; ++i)
        words.push_back(coded::wordOf(i, generation));
    for (int line = 1; line <= plant.count(); ++line) {
        judge.setGeneration(line, generation);
        plant.memory(line).set(Media::Registers, 0, words);
    }
}

void TroubledLines::giveCommands() {
    for (int line = 1; line <= plant.count(); ++line) {
        const auto index = static_cast<std::size_t>(line - 1);
        if (results[index] < given[index])
            continue;
        ++given[index];
        const auto action = SetPoint{commandedRegister, commandedValue(given[index])};
        EXPECT_EQ(plant.commands().submit(ManyLines::command(line, action),
                                          [&, index](Halvex::DriverErrorResult) { ++results[index]; }),
                  "");
    }
}

std::uint64_t TroubledLines::pollsEnded() {
    std::uint64_t ended = 0;
    for (int line = 1; line <= plant.count(); ++line)
        ended += plant.driverRtu(line).GetRtuStatus().requests;
    return ended - std::accumulate(results.begin(), results.end(), std::uint64_t{0});
}

void TroubledLines::start() {
    plant.start();
    expectFreshValues();
}

void TroubledLines::expectFreshValues() {
    for (int line = 1; line <= plant.count(); ++line)
        EXPECT_TRUE(Plant::eventually([&] { return judge.requestsUntilFresh(line) > 0; })) << "line " << line;
}

void TroubledLines::endureAndJudge(const MakeTrouble& makeTrouble, std::uint64_t polls) {
    start();
    const SystemUse before = SystemUse::now();
    const std::uint64_t pollsBefore = pollsEnded();
    for (int line = 1; line <= plant.count(); ++line) {
        const bool isBreakMode = plant.type(line) == LineType::SerialBreakMode;
        relay.trouble(line - 1,
                      makeTrouble(isBreakMode ? sim::Framing::BreakMode : sim::Framing::DataMode, line));
    }
    while (pollsEnded() < pollsBefore + polls) {
        renewValues();
        giveCommands();
        std::this_thread::sleep_for(50ms);
    }
    const std::uint64_t ended = pollsEnded() - pollsBefore;

    relay.heal();
    renewValues();
    for (int line = 1; line <= plant.count(); ++line)
        judge.countRequests(line);
    expectFreshValues();
    // A cycle is one poll of each kind; one poll and one command may have been in progress.
    constexpr std::uint64_t mostRequests = 3 * 3 + 2;
    std::uint64_t slowest = 0;
    std::uint64_t failures = 0;
    for (int line = 1; line <= plant.count(); ++line) {
        slowest = std::max(slowest, judge.requestsUntilFresh(line));
        const RtuStatus status = plant.driverRtu(line).GetRtuStatus();
        failures += status.timeOuts + status.errors;
        const auto index = static_cast<std::size_t>(line - 1);
        EXPECT_TRUE(Plant::eventually([&] { return results[index] >= given[index]; })) << "line " << line;
    }
    EXPECT_LE(slowest, mostRequests);
    EXPECT_GT(failures, 0U);
    expectNoMoreThan(before);
    plant.stop();
    for (std::size_t i = 0; i < results.size(); ++i)
        EXPECT_EQ(results[i], given[i]) << "line " << i + 1;
    EXPECT_THAT(judge.wrongValues(), testing::IsEmpty());
    std::ostringstream figures;
    figures << ended << " polls on " << plant.count() << " lines, " << failures << " failed, "
            << std::accumulate(given.begin(), given.end(), 0U) << " commands, " << judge.values()
            << " values, none wrong; fresh after " << slowest << " requests at most";
    soak::tellFigures(figures.str());
}
