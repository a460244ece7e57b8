// What sits at the other end of a serial line has lost its mind for a while.

#include "MadPeer.h"
#include "CommandLoad.h"
#include "SerialRelay.h"
#include "Soak.h"

#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

constexpr unsigned registers = 30;
constexpr unsigned setPoints = 4;

struct Madness {
    const char* name;
    std::function<std::unique_ptr<LineTrouble>(int line)> make;
    bool letsPollsSucceed; // else some fail; a busy machine lets others fail as well
};

// Answers to the reads of flags, registers and set points, with and without the start of Data Mode.
std::vector<int> answerSizes(unsigned flags) {
    std::vector<int> sizes;
    for (const unsigned payload : {(flags + 7) / 8, 4 * registers, 4 * setPoints})
        for (const int framing : {2, 4})
            sizes.push_back(static_cast<int>(payload) + framing);
    return sizes;
}

class MadPeer : public testing::TestWithParam<Madness> {};

} // namespace

TEST_P(MadPeer, IsNeverBelievedAndTheLineRecoversFromIt) {
    const int rounds = count(1, 20);
    SerialRelay relay;
    Shape shape;
    shape.type = LineType::SerialDataMode;
    shape.typeOfEvenLines = LineType::SerialBreakMode;
    shape.lines = 4;
    shape.registers = registers;
    shape.setPoints = setPoints;
    shape.timeout = 300ms;
    TaggedPlant plant(shape, [&relay](const sim::Simulator& controllers, int lineId) {
        host::SerialEnd end;
        end.device = relay.addLine(controllers.device(lineId));
        return end;
    });
    plant.judge().allowOlderValues();
    plant.start();
    CommandLoad commands(plant);
    commands.allowLateAcknowledges();
    std::uint64_t slowest = 0;
    for (int round = 0; round < rounds; ++round) {
        const TaggedPlant::Figures before = plant.figures();
        for (int line = 0; line < shape.lines; ++line)
            relay.trouble(line, GetParam().make(line + shape.lines * round));
        plant.awaitRequests(20);
        const TaggedPlant::Figures after = plant.figures();
        if (GetParam().letsPollsSucceed)
            EXPECT_GT(after.requests - before.requests, after.failed - before.failed);
        else
            EXPECT_GT(after.failed, before.failed);
        relay.heal();
        plant.expectFreshValues();
        slowest = std::max(slowest, plant.judge().mostRequestsUntilFresh());
    }
    commands.finish();
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures(std::to_string(rounds) + " times, fresh after at most " + std::to_string(slowest) +
                " requests; " + plant.figuresText() + "; " + commands.figuresText());
}

// An echo of 7 bytes, of a read in Break Mode, would be the right answer to a read of 33 to 40 bits: the one
// telegram that nobody can tell. The plant has 60 flags.
INSTANTIATE_TEST_SUITE_P(
    That, MadPeer,
    testing::Values(
        Madness{"DripsBytesInTime", [](int) { return std::make_unique<DrippingPeer>(1ms); }, true},
        Madness{"DripsBytesTooSlowly", [](int) { return std::make_unique<DrippingPeer>(35ms); }, false},
        Madness{"EchoesBeforeItAnswers", [](int) { return std::make_unique<EchoingPeer>(true); }, false},
        Madness{"OnlyEchoes", [](int) { return std::make_unique<EchoingPeer>(false); }, false},
        Madness{"TalksRubbish",
                [](int line) {
                    return std::make_unique<RubbishPeer>(answerSizes(Shape().flags),
                                                         static_cast<std::uint64_t>(line));
                },
                false}),
    [](const auto& madness) { return std::string(madness.param.name); });
