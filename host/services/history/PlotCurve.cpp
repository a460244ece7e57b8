#include "PlotCurve.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

void addValue(PlotCurve::Column& column, double value, double milliseconds) {
    if (column.goodMs == 0)
        column.first = column.lowest = column.highest = value;
    column.lowest = std::min(column.lowest, value);
    column.highest = std::max(column.highest, value);
    column.last = value;
    column.goodMs += milliseconds;
}

} // namespace

PlotCurve::PlotCurve(HistoryPoint plottedPoint, std::int64_t fromMs, std::int64_t toMs,
                     std::size_t columnCount)
    : plotted(std::move(plottedPoint)), from(fromMs),
      columnMs(static_cast<double>(toMs - fromMs) / static_cast<double>(columnCount)), all(columnCount) {}

void PlotCurve::add(const RecordedSpan& span) {
    const double begin = static_cast<double>(span.beginMs - from) / columnMs;
    const double end = static_cast<double>(span.endMs - from) / columnMs;
    for (auto i = static_cast<std::size_t>(std::max(0., begin)); i < all.size(); ++i) {
        const auto column = static_cast<double>(i);
        const double milliseconds = (std::min(end, column + 1) - std::max(begin, column)) * columnMs;
        if (milliseconds <= 0)
            return;
        if (span.value)
            addValue(all[i], *span.value, milliseconds);
        else if (!span.quality)
            all[i].unrecordedMs += milliseconds;
    }
}

} // namespace host
