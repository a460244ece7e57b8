// Every way in which a serial line maltreats telegrams and pieces of them, while the host polls and commands
// through it.
//
// An answer that comes after its time-out can pass for the answer to the next telegram: a serial telegram
// does not say which request it belongs to. So what is late here stays far below the time-out, and a doubled
// answer, which can still be the next one's, has a size that no other request's answer has: it can bring an
// older value of its own points once more, and nothing else.

#include "CommandLoad.h"
#include "LateTimer.h"
#include "SerialRelay.h"
#include "Soak.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds timeOut = 300ms;

struct Badness {
    const char* name;
    BadSerialLine::Maltreatment maltreatment;
};

// Between two bytes of one answer 20 ms may pass; pieces are late by less and by more than that.
BadSerialLine::Maltreatment late() {
    BadSerialLine::Maltreatment maltreatment;
    maltreatment.telegrams.longestDelay = 60ms;
    maltreatment.pieces.longestDelay = 25ms;
    maltreatment.pieces.overtakenBy = 2ms;
    return maltreatment;
}

BadSerialLine::Maltreatment suffering(double Rates::*kind, double share) {
    BadSerialLine::Maltreatment maltreatment = late();
    maltreatment.telegrams.*kind = share;
    maltreatment.pieces.*kind = share;
    return maltreatment;
}

// In telegrams, not in their pieces: so none has more than two wrong bits, which the checksum always finds.
// For each that is found the line is drained for up to five seconds.
BadSerialLine::Maltreatment flippedBits() {
    BadSerialLine::Maltreatment maltreatment;
    maltreatment.telegrams.bitFlips = count(0.005, 0.003);
    return maltreatment;
}

BadSerialLine::Maltreatment allTogether() {
    BadSerialLine::Maltreatment maltreatment = late();
    for (Rates* const rates : {&maltreatment.telegrams, &maltreatment.pieces}) {
        rates->loss = rates->truncation = rates->reordering = 0.003;
        rates->delay = rates->duplication = 0.01;
    }
    maltreatment.telegrams.bitFlips = 0.002;
    return maltreatment;
}

class BadSerialLines : public testing::TestWithParam<Badness> {};

} // namespace

TEST_P(BadSerialLines, ShowNoWrongValueEndEveryCommandAndRecover) {
    SerialRelay relay;
    Shape shape;
    shape.type = LineType::SerialDataMode;
    shape.typeOfEvenLines = LineType::SerialBreakMode;
    shape.lines = count(4, 32);
    shape.registers = 30;
    shape.timeout = timeOut;
    TaggedPlant plant(shape, [&relay](const sim::Simulator& controllers, int lineId) {
        host::SerialEnd end;
        end.device = relay.addLine(controllers.device(lineId));
        return end;
    });
    plant.judge().allowOlderValues();
    plant.start();
    CommandLoad commands(plant);
    commands.allowLateAcknowledges();
    std::atomic<unsigned> spared{0};
    for (int line = 1; line <= shape.lines; ++line) {
        const bool isBreakMode = shape.typeOf(line) == LineType::SerialBreakMode;
        relay.trouble(line - 1, std::make_unique<BadSerialLine>(
                                    isBreakMode ? sim::Framing::BreakMode : sim::Framing::DataMode,
                                    GetParam().maltreatment, static_cast<std::uint64_t>(line), spared));
    }
    std::optional<LateTimer> control(std::in_place);
    commands.awaitPolls(count(200U, 100'000U));
    commands.finish();
    relay.heal();
    const auto late = std::chrono::duration_cast<std::chrono::milliseconds>(control->latest());
    control.reset();
    plant.expectRecovery();
    plant.expectNoWrongValue();
    EXPECT_GT(plant.figures().attempts, plant.figures().requests) << "nothing was asked for again";
    tellFigures(plant.figuresText() + ", " + commands.figuresText() + ", " + std::to_string(spared) +
                " telegrams spared, a timer up to " + std::to_string(late.count()) + " ms late");
}

INSTANTIATE_TEST_SUITE_P(Suffering, BadSerialLines,
                         testing::Values(Badness{"Loss", suffering(&Rates::loss, 0.01)},
                                         Badness{"Delay", suffering(&Rates::delay, 0.05)},
                                         Badness{"Duplication", suffering(&Rates::duplication, 0.02)},
                                         Badness{"Reordering", suffering(&Rates::reordering, 0.01)},
                                         Badness{"Truncation", suffering(&Rates::truncation, 0.01)},
                                         Badness{"BitFlips", flippedBits()},
                                         Badness{"AllOfThem", allTogether()}),
                         [](const auto& badness) { return std::string(badness.param.name); });
