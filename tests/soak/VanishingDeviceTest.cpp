// A serial adapter that is pulled out and put back: the path is a link to a terminal that is closed and made
// anew.

#include "CommandLoad.h"
#include "Soak.h"

#include <gtest/gtest.h>

#include <random>

using namespace soak;
using namespace std::chrono_literals;

// Sometimes it is back before anybody has noticed, sometimes after the host has failed to open it.
TEST(VanishingDevice, IsInUseAgainEachTimeThatItIsBack) {
    const int times = count(4, 100);
    Shape shape;
    shape.type = LineType::SerialDataMode;
    shape.typeOfEvenLines = LineType::SerialBreakMode;
    shape.lines = 4;
    TaggedPlant plant(shape, [](const sim::Simulator& controllers, int lineId) {
        host::SerialEnd end;
        end.device = controllers.device(lineId);
        return end;
    });
    plant.start();
    CommandLoad commands(plant);
    std::mt19937 random(7);
    std::uint64_t slowest = 0;
    for (int i = 0; i < times; ++i) {
        const auto away = std::chrono::milliseconds(i % 2 == 0 ? random() % 20 : random() % 1500);
        for (int line = 1; line <= shape.lines; ++line)
            plant.controllers().cut(line);
        std::this_thread::sleep_for(away);
        for (int line = 1; line <= shape.lines; ++line)
            ASSERT_EQ(plant.controllers().restore(line), "");
        plant.expectFreshValues();
        slowest = std::max(slowest, plant.judge().mostRequestsUntilFresh());
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 500)); // commands have their turn
    }
    commands.finish();
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures(std::to_string(times) + " times on " + std::to_string(shape.lines) +
                " lines, fresh after at most " + std::to_string(slowest) + " requests; " +
                plant.figuresText() + "; " + commands.figuresText());
}
