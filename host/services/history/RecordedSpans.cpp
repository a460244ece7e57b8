#include "RecordedSpans.h"

#include <algorithm>
#include <utility>

namespace host {

SpanMaker::SpanMaker(std::vector<RecordedRun> runsWithin, std::int64_t fromMs, std::int64_t toMs,
                     Taker takeSpan)
    : runs(std::move(runsWithin)), to(toMs), take(std::move(takeSpan)), at(fromMs) {}

void SpanMaker::add(const RecordedRow& row) {
    if (pending && pending->timeMs != row.timeMs)
        tell(*pending, row.timeMs);
    pending = row;
}

void SpanMaker::finish() {
    if (pending)
        tell(*pending, to);
    tellGapUntil(to);
}

void SpanMaker::tell(const RecordedRow& row, std::int64_t endMs) {
    const std::int64_t end = std::min({endMs, endOfRun(row.timeMs), to});
    if (row.timeMs >= to || end < at)
        return;
    tellGapUntil(row.timeMs);
    if (end > at || row.timeMs == at)
        take({at, end, row.timeMs, row.quality, row.value});
    at = end;
}

void SpanMaker::tellGapUntil(std::int64_t endMs) {
    if (endMs <= at)
        return;
    take({at, endMs, at, std::nullopt, std::nullopt});
    at = endMs;
}

std::int64_t SpanMaker::endOfRun(std::int64_t timeMs) const {
    std::int64_t end = timeMs;
    for (const RecordedRun& run : runs)
        if (run.beginMs <= timeMs && timeMs <= run.endMs)
            end = std::max(end, run.endMs);
    return end;
}

} // namespace host
