#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

namespace soak {

using Clock = std::chrono::steady_clock;

// How often a line maltreats what passes over it: for each kind the share of the telegrams, 0 to 1.
struct Rates {
    double loss = 0;
    double delay = 0;       // held back for up to `longestDelay`; those behind it stay behind it
    double duplication = 0; // comes a second time, up to `longestDelay` later
    double reordering = 0;  // held back for `overtakenBy`, while those behind it pass
    double truncation = 0;  // its first bytes alone, down to none
    double bitFlips = 0;    // one bit turned over, or two
    std::chrono::milliseconds longestDelay{20};
    std::chrono::milliseconds overtakenBy{40};
};

// What becomes of a telegram: these bytes leave at this time.
struct Delivery {
    QByteArray bytes;
    Clock::time_point time;
};

// What one direction of a bad line does to the telegrams that pass, the same for the same seed and the same
// telegrams. No I/O and no clock: the time comes from outside. One thread at a time.
//
// A telegram suffers two flipped bits at most. The checksum of 16 bits finds these always, and more of them
// but for one in 65,536: a strict test could not tell such a telegram from a fault.
class Impairment {
public:
    Impairment(const Rates& lineRates, std::uint64_t seed) : rates(lineRates), random(seed) {}

    // What is to be forwarded of a telegram that comes in at `now`; nothing when it is lost.
    std::vector<Delivery> pass(const QByteArray& telegram, Clock::time_point now);
    // From now on everything passes untouched and at once, but not before what was held back in order.
    void heal() { rates = {}; }
    void impair(const Rates& newRates) { rates = newRates; }

    // The telegrams that something was done to.
    std::uint64_t impaired() const { return impairedCount; }

private:
    bool happens(double rate);
    std::uint64_t below(std::uint64_t bound);
    Clock::duration someDelay();
    QByteArray spoil(QByteArray telegram);
    void flipBits(QByteArray& telegram);

    Rates rates;
    std::mt19937_64 random;
    Clock::time_point lastInOrder = Clock::time_point::min();
    std::uint64_t impairedCount = 0;
};

} // namespace soak
