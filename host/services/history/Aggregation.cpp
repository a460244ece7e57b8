#include "Aggregation.h"

#include <algorithm>

namespace host {

Aggregation::Aggregation(Aggregate wantedAggregate, const std::vector<std::int64_t>& times)
    : aggregate(wantedAggregate) {
    for (std::size_t i = 0; i + 1 < times.size(); ++i) {
        AggregatedValue value;
        value.beginMs = times[i];
        value.endMs = times[i + 1];
        all.push_back(value);
    }
}

void Aggregation::add(const RecordedSpan& span) {
    while (first < all.size() && all[first].endMs <= span.beginMs)
        ++first;
    for (std::size_t i = first; i < all.size() && all[i].beginMs < span.endMs; ++i) {
        const std::int64_t length =
            std::min(span.endMs, all[i].endMs) - std::max(span.beginMs, all[i].beginMs);
        if (length <= 0)
            continue;
        if (span.value)
            count(all[i], *span.value, length);
        else if (span.quality)
            all[i].otherQuality = span.quality;
    }
}

// The mean in this form is exact while the value stays the same.
void Aggregation::count(AggregatedValue& into, double value, std::int64_t milliseconds) const {
    into.goodMs += milliseconds;
    const double before = into.value.value_or(value);
    switch (aggregate) {
    case Aggregate::Mean:
        into.value =
            before + (value - before) * static_cast<double>(milliseconds) / static_cast<double>(into.goodMs);
        break;
    case Aggregate::Min:
        into.value = std::min(before, value);
        break;
    case Aggregate::Max:
        into.value = std::max(before, value);
        break;
    case Aggregate::Last:
        into.value = value;
        break;
    }
}

} // namespace host
