#pragma once

#include "Finding.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Where changes of values are recorded, and how long they are kept.
struct HistorySettings {
    std::string file;                             // its path
    std::chrono::milliseconds keep = defaultKeep; // older changes are removed
    std::uint64_t maxSize = 2'000'000'000;        // bytes; beyond, the oldest changes are removed
    Place place;                                  // in the site file

    static constexpr std::chrono::hours defaultKeep{400 * 24};
    // Below, the file is hardly more than the names of the points.
    static constexpr std::uint64_t leastSize = 1'000'000;
};

} // namespace host
