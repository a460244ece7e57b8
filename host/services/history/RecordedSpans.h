#pragma once

#include "HistoryRow.h"

#include <functional>
#include <vector>

namespace host {

// How a point stood over a time. Without a quality nothing was recorded; without a value it was not good.
struct RecordedSpan {
    std::int64_t beginMs = 0;
    std::int64_t endMs = 0;
    std::int64_t sinceMs = 0; // of the row that tells it, which may be before the time that is asked for
    std::optional<PointQuality> quality;
    std::optional<double> value;

    std::int64_t length() const { return endMs - beginMs; }
};

// Makes of the rows of a point the spans of a time, without gaps or overlaps. A value stands until the next
// row or the end of its run. The last row of a run may make a span of no length.
class SpanMaker {
public:
    using Taker = std::function<void(const RecordedSpan&)>;

    // The runs that touch the time from `fromMs` to before `toMs`.
    SpanMaker(std::vector<RecordedRun> runsWithin, std::int64_t fromMs, std::int64_t toMs, Taker takeSpan);

    // In the order of their times, beginning with the last one from before `fromMs`. Of several of one time
    // the last one counts.
    void add(const RecordedRow& row);
    void finish();

private:
    void tell(const RecordedRow& row, std::int64_t endMs);
    void tellGapUntil(std::int64_t endMs);
    std::int64_t endOfRun(std::int64_t timeMs) const;

    const std::vector<RecordedRun> runs;
    const std::int64_t to;
    const Taker take;
    std::int64_t at; // what was before has been told
    std::optional<RecordedRow> pending;
};

} // namespace host
