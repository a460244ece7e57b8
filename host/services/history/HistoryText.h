#pragma once

#include "Aggregation.h"

#include <QTimeZone>

#include <memory>
#include <string>

// What was recorded, as rows of comma-separated values and as JSON objects, each on a line.
namespace host {

// Whose values they are, and how they are shown.
struct HistoryPoint {
    std::string name; // "pump-house/LEVEL"
    std::string unit; // empty: none
    std::optional<unsigned> decimals;
    bool isStatus = false;
};

// Times are local ones with their offset. Changes have time, point, value, unit and quality, aggregated
// values the share of time in which the point was good, too. There is no value without a good one. Qualities
// are "good", "bad", "refused" and "not recorded"; of an aggregated value that was good for a part of its
// time it is "partly good".
class HistoryText {
public:
    virtual ~HistoryText() = default;

    // Of all changes, or of all aggregated values; with line end, or empty.
    virtual std::string header(bool isAggregated) const = 0;
    virtual std::string line(const HistoryPoint& point, const RecordedSpan& span) const = 0;
    virtual std::string line(const HistoryPoint& point, const AggregatedValue& value) const = 0;
};

std::unique_ptr<HistoryText> makeHistoryCsv(const QTimeZone& zone);
std::unique_ptr<HistoryText> makeHistoryJson(const QTimeZone& zone);

} // namespace host
