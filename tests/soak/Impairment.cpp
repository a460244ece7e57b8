#include "Impairment.h"

#include <algorithm>

namespace soak {

std::vector<Delivery> Impairment::pass(const QByteArray& telegram, Clock::time_point now) {
    if (happens(rates.loss)) {
        ++impairedCount;
        return {};
    }
    const bool late = happens(rates.delay);
    const bool overtaken = happens(rates.reordering);
    const bool twice = happens(rates.duplication);
    Delivery first{spoil(telegram), now};
    if (overtaken) {
        first.time += rates.overtakenBy;
    } else {
        first.time = std::max(late ? now + someDelay() : now, lastInOrder);
        lastInOrder = first.time;
    }
    impairedCount += late || overtaken || twice || first.bytes != telegram ? 1U : 0U;
    std::vector<Delivery> deliveries{first};
    if (twice)
        deliveries.push_back({telegram, first.time + someDelay()});
    return deliveries;
}

bool Impairment::happens(double rate) {
    constexpr std::uint64_t steps = 1'000'000;
    return static_cast<double>(below(steps)) < rate * static_cast<double>(steps);
}

// The distributions of the standard library differ from one system to the next; this is the same on all.
std::uint64_t Impairment::below(std::uint64_t bound) {
    return random() % bound;
}

Clock::duration Impairment::someDelay() {
    const auto longest = std::chrono::microseconds(rates.longestDelay).count();
    return std::chrono::microseconds(below(static_cast<std::uint64_t>(longest) + 1));
}

QByteArray Impairment::spoil(QByteArray telegram) {
    if (happens(rates.truncation) && !telegram.isEmpty())
        telegram.truncate(static_cast<int>(below(static_cast<std::uint64_t>(telegram.size()))));
    if (happens(rates.bitFlips) && !telegram.isEmpty())
        flipBits(telegram);
    return telegram;
}

void Impairment::flipBits(QByteArray& telegram) {
    const std::uint64_t bits = static_cast<std::uint64_t>(telegram.size()) * 8;
    const std::uint64_t first = below(bits);
    const std::uint64_t second = below(bits);
    const auto flip = [&telegram](std::uint64_t bit) {
        char& byte = telegram.data()[bit / 8];
        byte = static_cast<char>(byte ^ (1 << (bit % 8)));
    };
    flip(first);
    // The same bit twice would leave the telegram whole.
    if (second != first && below(2) == 0)
        flip(second);
}

} // namespace soak
