#include "GoodValueAges.h"
#include "LateTimer.h"
#include "Soak.h"
#include "TaggedPlant.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

class DeadStation : public testing::TestWithParam<LineType> {};

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
    shape.type = GetParam();
    shape.stations = 5;
    shape.timeout = 400ms;
    shape.scan = {1s, 1s, 1s};
    GoodValueAges ages; // outlives the plant, which tells it of values until its end
    TaggedPlant plant(shape, directly());
    plant.host().listen(ages);
    plant.start();
    plant.controllers().silence(1, dead, true);
    ages.begin();
    std::optional<LateTimer> control(std::in_place);
    std::this_thread::sleep_for(count(5s, 60s));
    const auto oldest = ages.oldestBesides(dead);
    const auto late = std::chrono::duration_cast<std::chrono::milliseconds>(control->latest());
    control.reset();
    EXPECT_LE(oldest, shape.scan.status + 2 * shape.timeout + late);

    plant.controllers().silence(1, dead, false);
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures("oldest value of the others " + std::to_string(oldest.count()) + " ms of " +
                std::to_string((shape.scan.status + 2 * shape.timeout).count()) + ", a timer up to " +
                std::to_string(late.count()) + " ms late, " + plant.figuresText());
}

INSTANTIATE_TEST_SUITE_P(In, DeadStation,
                         testing::Values(LineType::SerialDataMode, LineType::SerialBreakMode),
                         [](const auto& type) {
                             return type.param == LineType::SerialBreakMode ? "BreakMode" : "DataMode";
                         });
