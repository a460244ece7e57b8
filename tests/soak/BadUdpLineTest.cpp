#include "CommandLoad.h"
#include "RelayedPlant.h"
#include "Soak.h"

#include <gtest/gtest.h>

// Every way in which a network maltreats datagrams, while the host polls and commands through it.

using namespace soak;

namespace {

struct Disturbance {
    const char* name;
    Rates toController;
    Rates toHost;
};

Disturbance bothWays(const char* name, const Rates& rates) {
    return {name, rates, rates};
}

Rates rate(double Rates::*kind, double share) {
    Rates rates;
    rates.*kind = share;
    return rates;
}

Rates allTogether() {
    Rates rates;
    rates.loss = rates.delay = rates.duplication = 0.05;
    rates.reordering = rates.truncation = rates.bitFlips = 0.05;
    return rates;
}

Rates jitter(double loss) {
    Rates rates;
    rates.loss = loss;
    rates.delay = 1;
    return rates;
}

// Answers that come when nobody waits for them any more, or for another one, or twice.
Rates lateAnswers() {
    Rates rates;
    rates.delay = rates.duplication = rates.reordering = 0.15;
    rates.longestDelay = 3 * Shape().timeout;
    rates.overtakenBy = Shape().timeout * 5 / 4;
    return rates;
}

class BadUdpLine : public testing::TestWithParam<Disturbance> {};

} // namespace

TEST_P(BadUdpLine, ShowsNoWrongValueEndsEveryCommandAndRecovers) {
    UdpRelay relay;
    Shape shape;
    shape.lines = count(12, 64);
    TaggedPlant plant(shape, through(relay));
    plant.start();
    CommandLoad commands(plant);
    relay.impair(GetParam().toController, GetParam().toHost);
    commands.awaitPolls(count(250U, 100'000U));
    commands.finish();
    EXPECT_GT(relay.counts().impaired, 0U);
    const std::uint64_t impaired = relay.counts().impaired;
    relay.heal();
    plant.expectRecovery();
    plant.expectNoWrongValue();
    tellFigures(plant.figuresText() + ", " + std::to_string(impaired) + " telegrams impaired, " +
                commands.figuresText());
}

INSTANTIATE_TEST_SUITE_P(Suffering, BadUdpLine,
                         testing::Values(bothWays("Loss", rate(&Rates::loss, 0.1)),
                                         bothWays("Delay", rate(&Rates::delay, 0.5)),
                                         bothWays("Duplication", rate(&Rates::duplication, 0.3)),
                                         bothWays("Reordering", rate(&Rates::reordering, 0.2)),
                                         bothWays("Truncation", rate(&Rates::truncation, 0.1)),
                                         bothWays("BitFlips", rate(&Rates::bitFlips, 0.1)),
                                         bothWays("AllOfThem", allTogether()),
                                         Disturbance{"LateDoubledAndReorderedAnswers", {}, lateAnswers()},
                                         bothWays("TwentyPercentLossWithJitter", jitter(0.2))),
                         [](const auto& disturbance) { return std::string(disturbance.param.name); });
