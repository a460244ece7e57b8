#pragma once

#include "Telegram.h"

#include <chrono>
#include <random>
#include <string>

namespace sim {

// How often a line's controllers misbehave: for each kind the share of the answers, 0 to 1.
struct Faults {
    double drop = 0;      // the request is obeyed, the answer is lost
    double late = 0;      // the answer comes after `lateBy`
    double duplicate = 0; // the answer comes twice
    double crc = 0;       // the answer's last byte is inverted
    double nak = 0;       // the request is refused and not obeyed
    double shorten = 0;   // the answer breaks off
    std::chrono::milliseconds lateBy{300};
};

// "drop=5%,late=2%,duplicate=1%,crc=1%,nak=1%,short=1%", any of them. Otherwise false and `error` says why.
bool parseFaults(const std::string& text, Faults& faults, std::string& error);

// What befalls one answer. `drop` and `refuse` may come with others; Line knows the order.
struct Mishap {
    bool drop = false;
    bool late = false;
    bool duplicate = false;
    bool spoilChecksum = false;
    bool refuse = false;
    bool shorten = false;
    double cut = 0; // where a shortened answer breaks off, as a share of it
};

// Draws the mishaps of one line, the same ones for the same seed and line on every machine. Each answer
// takes equally many random numbers, so a change of one share leaves the others' mishaps where they were.
class MishapGenerator {
public:
    MishapGenerator(std::uint64_t seed, int lineId);
    Mishap next(const Faults& faults);

private:
    double draw(); // 0 <= result < 1
    std::mt19937_64 generator;
};

// Leaves 1 to size - 1 bytes; of a single byte nothing.
void shorten(Bytes& answer, double cut);
void spoilChecksum(Bytes& answer);

} // namespace sim
