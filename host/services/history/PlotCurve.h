#pragma once

#include "HistoryText.h"
#include "RecordedSpans.h"

#include <vector>

namespace host {

// The course of one point, in as many columns as a plot is wide: whatever the number of changes, it takes
// room for these alone.
class PlotCurve {
public:
    // What is seen of a column: where the values came in, how far they went, and where they left. Nothing
    // when the point was good for less than half of it.
    struct Column {
        double first = 0;
        double lowest = 0;
        double highest = 0;
        double last = 0;
        double goodMs = 0;
        double unrecordedMs = 0;
    };

    PlotCurve(HistoryPoint plottedPoint, std::int64_t fromMs, std::int64_t toMs, std::size_t columnCount);

    // In the order of their times.
    void add(const RecordedSpan& span);

    const HistoryPoint& point() const { return plotted; }
    const std::vector<Column>& columns() const { return all; }
    bool isShown(const Column& column) const { return column.goodMs >= columnMs / 2; }
    bool isUnrecorded(const Column& column) const { return column.unrecordedMs > columnMs / 2; }

private:
    const HistoryPoint plotted;
    const std::int64_t from;
    const double columnMs;
    std::vector<Column> all;
};

} // namespace host
