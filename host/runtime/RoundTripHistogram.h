#pragma once

#include <array>
#include <chrono>
#include <cstdint>

namespace host {

// How long answers took, counted in steps. A value; one thread at a time.
struct RoundTripHistogram {
    // The ends of the steps. A controller on Ethernet answers within milliseconds, a long telegram on a slow
    // serial line takes a second, and a time-out is rarely above five.
    static constexpr std::array<std::chrono::microseconds, 13> ends{
        {std::chrono::microseconds(500), std::chrono::microseconds(1'000), std::chrono::microseconds(2'000),
         std::chrono::microseconds(5'000), std::chrono::microseconds(10'000),
         std::chrono::microseconds(20'000), std::chrono::microseconds(50'000),
         std::chrono::microseconds(100'000), std::chrono::microseconds(200'000),
         std::chrono::microseconds(500'000), std::chrono::microseconds(1'000'000),
         std::chrono::microseconds(2'000'000), std::chrono::microseconds(5'000'000)}};

    void add(std::chrono::microseconds roundTrip);
    void add(const RoundTripHistogram& other);

    // Of each step those that are not in the one before; the last one holds those beyond all ends.
    std::array<std::uint64_t, ends.size() + 1> counts{};
    std::chrono::microseconds sum{0};
};

} // namespace host
