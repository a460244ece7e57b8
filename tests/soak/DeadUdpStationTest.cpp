#include "CommandLoad.h"
#include "GoodValueAges.h"
#include "RelayedPlant.h"
#include "Soak.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

TEST(DeadStation, OfFiveOnAUdpLinkLeavesTheOthersTimely) {
    constexpr int dead = 3;
    UdpRelay relay;
    Shape shape;
    shape.stations = 5;
    shape.timeout = 400ms;
    shape.scan = {1h, 1s, 1s};
    GoodValueAges ages; // outlives the plant, which tells it of values until its end
    TaggedPlant plant(shape, through(relay));
    plant.host().listen(ages);
    plant.start();
    plant.controllers().silence(1, dead, true);
    CommandLoad commands(plant);
    ages.begin();
    std::this_thread::sleep_for(count(5s, 60s));
    const auto oldest = ages.oldestBesides(dead);
    EXPECT_LE(oldest, shape.scan.status + 2 * shape.timeout);

    commands.finish();
    plant.controllers().silence(1, dead, false);
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures("oldest value of the others " + std::to_string(oldest.count()) + " ms of " +
                std::to_string((shape.scan.status + 2 * shape.timeout).count()) + ", " + plant.figuresText() +
                ", " + commands.figuresText());
}
