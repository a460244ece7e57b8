// A bad serial line between the host and its controllers, one kind of badness at a time and all together.
//
// Delays stay far below the time-out of 250 ms: an answer that is later can pass for the answer to the next
// telegram.

#include "Soak.h"
#include "TroubledLines.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using soak::BadSerialLine;

namespace {

struct Badness {
    const char* name;
    BadSerialLine::Maltreatment maltreatment;
};

class SerialImpairment : public testing::TestWithParam<Badness> {};

// Two bytes of one answer may be 20 ms apart. Chunks are held back for less and for more than that.
BadSerialLine::Maltreatment both(double telegrams, double chunks, double soak::Rates::*kind) {
    BadSerialLine::Maltreatment maltreatment;
    maltreatment.telegrams.*kind = telegrams;
    maltreatment.chunks.*kind = chunks;
    maltreatment.telegrams.longestDelay = 60ms;
    maltreatment.chunks.longestDelay = 25ms;
    maltreatment.chunks.overtakenBy = 2ms;
    return maltreatment;
}

// A wrong checksum of an answer costs up to five seconds, for which the line is drained. Bits are flipped in
// whole telegrams alone: so no telegram has more than two wrong ones, which the checksum always finds.
BadSerialLine::Maltreatment flippedBits() {
    return both(soak::count(0.02, 0.005), 0, &soak::Rates::bitFlips);
}

BadSerialLine::Maltreatment everything() {
    BadSerialLine::Maltreatment all = both(0.005, 0.005, &soak::Rates::loss);
    for (soak::Rates* const rates : {&all.telegrams, &all.chunks}) {
        rates->delay = 0.01;
        rates->duplication = 0.01;
        rates->reordering = 0.005;
        rates->truncation = 0.005;
    }
    all.telegrams.bitFlips = 0.002;
    return all;
}

const Badness badnesses[] = {
    {"Loss", both(0.01, 0.01, &soak::Rates::loss)},
    {"Delay", both(0.05, 0.05, &soak::Rates::delay)},
    {"Duplication", both(0.02, 0.02, &soak::Rates::duplication)},
    {"Reordering", both(0.01, 0.02, &soak::Rates::reordering)},
    {"Truncation", both(0.01, 0.01, &soak::Rates::truncation)},
    {"BitFlips", flippedBits()},
    {"Everything", everything()},
};

} // namespace

TEST_P(SerialImpairment, NoValueIsWrongAndTheLineRecovers) {
    TroubledLines lines(soak::count(6, 32));
    const auto makeTrouble = [](sim::Framing framing, int line) {
        return std::make_unique<BadSerialLine>(framing, GetParam().maltreatment,
                                               static_cast<std::uint64_t>(line));
    };
    lines.endureAndJudge(makeTrouble, soak::count<std::uint64_t>(600, 100'000));
}

INSTANTIATE_TEST_SUITE_P(Of, SerialImpairment, testing::ValuesIn(badnesses),
                         [](const auto& badness) { return std::string(badness.param.name); });
