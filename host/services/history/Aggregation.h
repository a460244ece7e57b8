#pragma once

#include "RecordedSpans.h"

#include <vector>

namespace host {

enum class Aggregate { Mean, Min, Max, Last };

// What has been made of the values within a time.
struct AggregatedValue {
    std::int64_t beginMs = 0;
    std::int64_t endMs = 0;
    std::int64_t goodMs = 0;                  // for how long the point was good
    std::optional<PointQuality> otherQuality; // the last one within that is not good
    std::optional<double> value;              // of the time in which it was good

    double goodShare() const { return static_cast<double>(goodMs) / static_cast<double>(endMs - beginMs); }
};

// One value for each stretch of time. The mean is weighted by time: a value counts for as long as it stood.
// Values that stood from before count, too; times in which the point was not good do not.
class Aggregation {
public:
    // Each stretch ends where the next begins; there are one fewer than times.
    Aggregation(Aggregate wantedAggregate, const std::vector<std::int64_t>& times);

    // In the order of their times.
    void add(const RecordedSpan& span);
    const std::vector<AggregatedValue>& values() const { return all; }

private:
    void count(AggregatedValue& into, double value, std::int64_t milliseconds) const;

    const Aggregate aggregate;
    std::vector<AggregatedValue> all;
    std::size_t first = 0; // what is before is over
};

} // namespace host
