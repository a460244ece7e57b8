#include "CommandLoad.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace soak {

CommandLoad::CommandLoad(TaggedPlant& commandedPlant, int sparedStation) : plant(commandedPlant) {
    for (int line = 1; line <= plant.shape().lines; ++line)
        for (int station = 1; station <= plant.shape().stations; ++station)
            if (station != sparedStation)
                operators.push_back({line, station});
    thread = std::thread([this] { run(); });
}

CommandLoad::~CommandLoad() {
    if (!thread.joinable())
        return;
    working = false;
    thread.join();
    plant.host().stop(); // ends what is still waiting, so that no result comes later
}

void CommandLoad::run() {
    while (working) {
        for (Operator& one : operators)
            commandNext(one);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

void CommandLoad::commandNext(Operator& one) {
    const unsigned index = (one.number + 1U) % plant.shape().setPoints;
    const unsigned place = plant.placeOfSetPoint(one.lineId, one.station, index);
    Given* given = nullptr;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (one.waits)
            return;
        one.waits = true;
        ++one.number;
        commands.push_back({one.lineId, one.station, index, taggedWord(place, one.number)});
        given = &commands.back();
    }
    plant.judge().noteCommand(place, one.number);
    const std::string refusal = plant.host().commands().submit(
        {one.lineId, one.station,
         host::SetPoint{TaggedPlant::firstSetPoint + index, static_cast<double>(given->value)}},
        [this, given, &one](const host::CommandEnd& end) {
            const std::lock_guard<std::mutex> lock(mutex);
            ++given->results;
            given->isDone = end.result == Halvex::DriverErrorResult::Success;
            one.waits = false;
        });
    EXPECT_EQ(refusal, "");
}

std::uint64_t CommandLoad::resultCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::uint64_t sum = 0;
    for (const Given& given : commands)
        sum += given.results;
    return sum;
}

void CommandLoad::awaitPolls(std::uint64_t count) {
    const std::uint64_t goal = plant.figures().requests - resultCount() + count;
    while (!testing::Test::HasFatalFailure() && plant.figures().requests - resultCount() < goal)
        plant.awaitRequests(1);
}

void CommandLoad::finish() {
    EXPECT_TRUE(Plant::eventually([this, doneBefore = doneCount()] { return doneCount() > doneBefore; }))
        << "no command succeeds";
    working = false;
    thread.join();
    const bool haveEnded = Plant::eventually([this] {
        const std::lock_guard<std::mutex> lock(mutex);
        return std::none_of(operators.begin(), operators.end(),
                            [](const Operator& one) { return one.waits; });
    });
    EXPECT_TRUE(haveEnded);
    expectResults();
    expectElementsHeldTheValues();
}

void CommandLoad::expectResults() {
    const std::lock_guard<std::mutex> lock(mutex);
    for (const Given& given : commands)
        EXPECT_EQ(given.results, 1U) << "line " << given.lineId << " station " << given.station << " value "
                                     << given.value;
}

// Every value is written once at most, so those that the controllers remember tell who got it.
void CommandLoad::expectElementsHeldTheValues() {
    std::set<std::tuple<int, int, unsigned, std::uint32_t>> held; // line, station, element, value
    for (int line = 1; line <= plant.shape().lines; ++line) {
        const sim::LineCounts counts = plant.controllers().counts(line);
        EXPECT_EQ(counts.writes.size(), counts.writesInAll) << "more writes than are remembered";
        for (const sim::WriteRecord& write : counts.writes)
            held.insert({line, write.station, write.address, write.value});
    }
    const std::lock_guard<std::mutex> lock(mutex);
    std::map<std::pair<int, int>, bool> wasHeldBefore; // of the line and station
    for (const Given& given : commands) {
        const bool isHeld = held.count({given.lineId, given.station,
                                        TaggedPlant::firstSetPointElement + given.index, given.value}) != 0;
        const bool wasBefore = std::exchange(wasHeldBefore[{given.lineId, given.station}], isHeld);
        // In Break Mode an acknowledge is a single byte, which any other one on the line can be.
        const bool isAnyByte = plant.shape().typeOf(given.lineId) == LineType::SerialBreakMode;
        const bool isLate = given.isDone && !isHeld && mayBeLate && (wasBefore || isAnyByte);
        lateCount += isLate ? 1 : 0;
        EXPECT_TRUE(isHeld || !given.isDone || isLate)
            << "line " << given.lineId << " station " << given.station << " value " << given.value;
    }
}

int CommandLoad::failuresBesides(int station) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return static_cast<int>(std::count_if(commands.begin(), commands.end(), [station](const Given& given) {
        return given.station != station && !given.isDone;
    }));
}

int CommandLoad::doneCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return static_cast<int>(
        std::count_if(commands.begin(), commands.end(), [](const Given& given) { return given.isDone; }));
}

std::string CommandLoad::figuresText() const {
    const int done = doneCount();
    const std::lock_guard<std::mutex> lock(mutex);
    return std::to_string(commands.size()) + " commands, " + std::to_string(done) + " done" +
           (mayBeLate ? ", " + std::to_string(lateCount) + " by an acknowledge that was not theirs" : "");
}

} // namespace soak
