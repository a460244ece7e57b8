#include "RoundTripHistogram.h"

#include <algorithm>

namespace host {

void RoundTripHistogram::add(std::chrono::microseconds roundTrip) {
    const auto end = std::lower_bound(ends.begin(), ends.end(), roundTrip);
    ++counts[static_cast<std::size_t>(end - ends.begin())];
    sum += roundTrip;
}

void RoundTripHistogram::add(const RoundTripHistogram& other) {
    for (std::size_t i = 0; i < counts.size(); ++i)
        counts[i] += other.counts[i];
    sum += other.sum;
}

} // namespace host
