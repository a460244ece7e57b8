#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <cstdint>
#include <optional>

namespace host {

// What is recorded of a point: how it stood from this time on.
struct RecordedRow {
    std::int64_t timeMs = 0; // since 1970
    PointQuality quality = PointQuality::NeverRead;
    std::optional<double> value; // as people know it; only of good ones
};

// From when to when every change was recorded. Outside of these times nothing is known.
struct RecordedRun {
    std::int64_t beginMs = 0;
    std::int64_t endMs = 0;
};

// Numbers of qualities in the file.
constexpr int recordedGood = 0;
constexpr int recordedBad = 1;
constexpr int recordedRefused = 2;

inline int numberOf(PointQuality quality) {
    return quality == PointQuality::Good      ? recordedGood
           : quality == PointQuality::Refused ? recordedRefused
                                              : recordedBad;
}

inline PointQuality qualityOf(int number) {
    return number == recordedGood      ? PointQuality::Good
           : number == recordedRefused ? PointQuality::Refused
                                       : PointQuality::Bad;
}

} // namespace host
