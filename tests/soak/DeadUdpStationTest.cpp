#include "CommandLoad.h"
#include "GoodValueAges.h"
#include "LateTimer.h"
#include "RelayedPlant.h"
#include "Sanitized.h"
#include "Soak.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

// What a sanitizer adds to the line's other requests in between.
constexpr auto slowness = isSanitized ? 600ms : 0ms;

struct Times {
    const char* name;
    std::chrono::milliseconds period;
    std::chrono::milliseconds timeout;
};

class DeadStation : public testing::TestWithParam<Times> {};

} // namespace

TEST_P(DeadStation, OfFiveOnAUdpLinkLeavesTheOthersTimely) {
    constexpr int dead = 3;
    UdpRelay relay;
    Shape shape;
    shape.stations = 5;
    shape.timeout = GetParam().timeout;
    shape.scan = {1h, GetParam().period, GetParam().period};
    GoodValueAges ages; // outlives the plant, which tells it of values until its end
    TaggedPlant plant(shape, through(relay));
    plant.host().listen(ages);
    plant.start();
    plant.controllers().silence(1, dead, true);
    // Its requests that wait in the driver's table when the station dies take a time-out each, and nobody can
    // take them back.
    std::this_thread::sleep_for(3 * shape.timeout);
    CommandLoad commands(plant, dead);
    std::optional<LateTimer> control(std::in_place);
    ages.begin();
    std::this_thread::sleep_for(count(5s, 60s));
    const auto oldest = ages.oldestBesides(dead);
    const auto late = std::chrono::duration_cast<std::chrono::milliseconds>(control->latest());
    control.reset();
    const std::chrono::milliseconds allowed = shape.scan.status + 2 * shape.timeout;
    EXPECT_LE(oldest, allowed + slowness + late);

    commands.finish();
    plant.controllers().silence(1, dead, false);
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures("oldest value of the others " + std::to_string(oldest.count()) + " ms of " +
                std::to_string(allowed.count()) + ", a timer up to " + std::to_string(late.count()) +
                " ms late, " + plant.figuresText() + ", " + commands.figuresText());
}

// Each command to it costs the line a time-out, after which the link is closed for a turn. The others'
// commands wait for that, and none is lost.
TEST(CommandedDeadStation, LeavesTheCommandsOfTheOthersDone) {
    constexpr int dead = 3;
    UdpRelay relay;
    Shape shape;
    shape.stations = 5;
    shape.timeout = 300ms;
    shape.scan = {1h, 1s, 1s};
    TaggedPlant plant(shape, through(relay));
    plant.start();
    plant.controllers().silence(1, dead, true);
    CommandLoad commands(plant);
    std::this_thread::sleep_for(count(5s, 60s));
    commands.finish();
    EXPECT_EQ(commands.failuresBesides(dead), 0);

    plant.controllers().silence(1, dead, false);
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures(plant.figuresText() + ", " + commands.figuresText());
}

INSTANTIATE_TEST_SUITE_P(With, DeadStation,
                         testing::Values(Times{"TimeOutsShorterThanPeriods", 2s, 1s},
                                         Times{"TimeOutsAsLongAsPeriods", 1s, 1s},
                                         Times{"TimeOutsLongerThanPeriods", 700ms, 1s}),
                         [](const auto& times) { return std::string(times.param.name); });
