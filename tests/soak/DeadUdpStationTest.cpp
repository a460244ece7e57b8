#include "CommandLoad.h"
#include "GoodValueAges.h"
#include "RelayedPlant.h"
#include "Soak.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

// The line's other requests in between, and what a busy machine adds to them. Less than a time-out.
constexpr auto someTurns = 600ms;

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
    GoodValueAges ages;
    TaggedPlant plant(shape, through(relay));
    plant.host().listen(ages);
    plant.start();
    plant.controllers().silence(1, dead, true);
    // Its requests that wait in the driver's table when the station dies take a time-out each, and nobody can
    // take them back.
    std::this_thread::sleep_for(3 * shape.timeout);
    CommandLoad commands(plant, dead);
    ages.begin();
    std::this_thread::sleep_for(count(5s, 60s));
    const auto oldest = ages.oldestBesides(dead);
    const std::chrono::milliseconds allowed = shape.scan.status + 2 * shape.timeout;
    EXPECT_LE(oldest, allowed + someTurns);

    commands.finish();
    plant.controllers().silence(1, dead, false);
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures("oldest value of the others " + std::to_string(oldest.count()) + " ms of " +
                std::to_string(allowed.count()) + ", " + plant.figuresText() + ", " + commands.figuresText());
}

INSTANTIATE_TEST_SUITE_P(With, DeadStation,
                         testing::Values(Times{"TimeOutsShorterThanPeriods", 2s, 1s},
                                         Times{"TimeOutsAsLongAsPeriods", 1s, 1s},
                                         Times{"TimeOutsLongerThanPeriods", 700ms, 1s}),
                         [](const auto& times) { return std::string(times.param.name); });
