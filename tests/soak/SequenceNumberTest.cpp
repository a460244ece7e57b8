#include "RelayedPlant.h"
#include "Soak.h"

#include <gtest/gtest.h>

#include <atomic>

// The sequence number of Ethernet telegrams has 16 bits and starts again from 0.

using namespace soak;

namespace {

unsigned sequenceOf(const QByteArray& telegram) {
    return static_cast<quint8>(telegram[6]) * 256U + static_cast<quint8>(telegram[7]);
}

} // namespace

TEST(SequenceNumber, PassesItsEndWhileAnswersComeTwice) {
    std::atomic<unsigned> wraps{0};
    std::atomic<unsigned> last{0};
    UdpRelay relay(1, [&](int, Direction direction, const QByteArray& telegram, Clock::time_point) {
        if (direction != Direction::ToController)
            return;
        const unsigned sequence = sequenceOf(telegram);
        wraps += last == 65535 && sequence == 0 ? 1U : 0U;
        last = sequence;
    });
    Shape shape;
    shape.registers = 800; // each a telegram: they follow each other without the rest between two polls
    shape.stride = 2;
    shape.timeout = std::chrono::seconds(2); // a busy machine is not to pass for a fault of the numbers
    TaggedPlant plant(shape, through(relay));
    plant.start();
    Rates doubled;
    doubled.duplication = 0.001;
    doubled.longestDelay = std::chrono::milliseconds(2);
    relay.impair({}, doubled);
    const unsigned wanted = count(1U, 2U);
    while (wraps < wanted)
        plant.awaitRequests(1);
    relay.heal();
    plant.expectRecovery();
    plant.expectNoWrongValue();
    EXPECT_EQ(wraps, wanted);
    tellFigures(std::to_string(relay.counts().toController) + " telegrams, past 65535 " +
                std::to_string(wraps) + " times, " + plant.figuresText() + ", " +
                std::to_string(relay.counts().impaired) + " answers doubled");
}
