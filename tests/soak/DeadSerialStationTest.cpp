#include "CommandLoad.h"
#include "GoodValueAges.h"
#include "LateTimer.h"
#include "Sanitized.h"
#include "Soak.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

struct Times {
    const char* name;
    LineType type;
    std::chrono::milliseconds period;
    std::chrono::milliseconds timeout;
};

// What a sanitizer adds to the line's other requests in between.
constexpr auto slowness = isSanitized ? 800ms : 0ms;

// Requests of the other stations that have failed: a machine too busy to answer in time, which nothing is to
// be learned from.
std::uint64_t failuresBesides(TaggedPlant& plant, int dead) {
    std::uint64_t failures = 0;
    for (const host::RtuFigures& rtu : plant.host().hostRuntime().rtuFigures())
        if (rtu.rtu->id != dead)
            failures += rtu.status.timeOuts + rtu.status.errors;
    return failures;
}

class DeadStation : public testing::TestWithParam<Times> {};

TaggedPlant::HostEnd directly() {
    return [](const sim::Simulator& controllers, int lineId) {
        host::SerialEnd end;
        end.device = controllers.device(lineId);
        return end;
    };
}

} // namespace

// Its status poll and its analog poll cost a time-out each. Its integrity poll would cost one more, but is
// left for later here: once an hour.
TEST_P(DeadStation, OfFiveOnASerialLineLeavesTheOthersTimely) {
    constexpr int dead = 3;
    Shape shape;
    shape.type = GetParam().type;
    shape.stations = 5;
    shape.timeout = GetParam().timeout;
    shape.scan = {1h, GetParam().period, GetParam().period};
    GoodValueAges ages; // outlives the plant, which tells it of values until its end
    TaggedPlant plant(shape, directly());
    plant.host().listen(ages);
    plant.start();
    plant.controllers().silence(1, dead, true);
    // Its requests that wait in the driver's table when the station dies take a time-out each, and nobody can
    // take them back.
    std::this_thread::sleep_for(3 * shape.timeout);
    CommandLoad commands(plant, dead);
    const std::chrono::milliseconds allowed = shape.scan.status + 2 * shape.timeout;
    std::optional<LateTimer> control(std::in_place);
    std::chrono::milliseconds oldest{0};
    int quietSpans = 0;
    for (int spans = 0; quietSpans < count(1, 12) && spans < count(10, 40); ++spans) {
        const std::uint64_t failuresBefore = failuresBesides(plant, dead);
        ages.begin();
        std::this_thread::sleep_for(5s);
        if (failuresBesides(plant, dead) != failuresBefore)
            continue;
        ++quietSpans;
        oldest = std::max(oldest, ages.oldestBesides(dead));
    }
    const auto late = std::chrono::duration_cast<std::chrono::milliseconds>(control->latest());
    control.reset();
    EXPECT_GT(quietSpans, 0) << "the machine is too busy to tell";
    EXPECT_LE(oldest, allowed + slowness + late);
    commands.finish();

    plant.controllers().silence(1, dead, false);
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures(std::to_string(quietSpans) + " times 5 s, oldest value of the others " +
                std::to_string(oldest.count()) + " ms of " + std::to_string(allowed.count()) +
                ", a timer up to " + std::to_string(late.count()) + " ms late, " + plant.figuresText() +
                ", " + commands.figuresText());
}

INSTANTIATE_TEST_SUITE_P(
    With, DeadStation,
    testing::Values(Times{"TimeOutsShorterThanPeriodsInDataMode", LineType::SerialDataMode, 1s, 400ms},
                    Times{"TimeOutsShorterThanPeriodsInBreakMode", LineType::SerialBreakMode, 1s, 400ms},
                    Times{"TimeOutsLongerThanPeriods", LineType::SerialDataMode, 200ms, 600ms}),
    [](const auto& times) { return std::string(times.param.name); });
