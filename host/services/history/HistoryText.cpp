#include "HistoryText.h"

#include "HistoryTimes.h"
#include "site/NumberText.h"
#include "values/ChangeText.h"
#include "values/ValueText.h"

#include <cstdio>
#include <cstdlib>

namespace host {

namespace {

constexpr const char* notRecorded = "not recorded";

std::string shownNumber(const HistoryPoint& point, double value) {
    if (!point.decimals)
        return numberText(value);
    std::string text;
    appendFixed(text, value, *point.decimals);
    return text;
}

// What is worked out has more digits than mean anything: nine are left.
std::string shownResult(const HistoryPoint& point, double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.9g", value);
    return shownNumber(point, std::strtod(digits, nullptr));
}

const char* qualityOf(const RecordedSpan& span) {
    return span.quality ? toText(*span.quality) : notRecorded;
}

const char* qualityOf(const AggregatedValue& value) {
    if (value.goodMs == value.endMs - value.beginMs)
        return toText(PointQuality::Good);
    if (value.goodMs > 0)
        return "partly good";
    return value.otherQuality ? toText(*value.otherQuality) : notRecorded;
}

std::string shareText(const AggregatedValue& value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.4g", value.goodShare());
    return digits;
}

std::string csvCell(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos)
        return cell;
    std::string quoted = "\"";
    for (const char character : cell)
        quoted.append(character == '"' ? 2 : 1, character);
    return quoted + '"';
}

class HistoryCsv : public HistoryText {
public:
    explicit HistoryCsv(const QTimeZone& timeZone) : zone(timeZone) {}

    std::string header(bool isAggregated) const override {
        return std::string("time,point,value,unit,quality") + (isAggregated ? ",good_share\n" : "\n");
    }
    std::string line(const HistoryPoint& point, const RecordedSpan& span) const override {
        return row(point, span.sinceMs, span.value ? shownNumber(point, *span.value) : "", qualityOf(span)) +
               '\n';
    }
    std::string line(const HistoryPoint& point, const AggregatedValue& value) const override {
        return row(point, value.beginMs, value.value ? shownResult(point, *value.value) : "",
                   qualityOf(value)) +
               ',' + shareText(value) + '\n';
    }

private:
    std::string row(const HistoryPoint& point, std::int64_t timeMs, const std::string& value,
                    const char* quality) const {
        return isoTimeText(timeMs, zone) + ',' + csvCell(point.name) + ',' + value + ',' +
               csvCell(point.unit) + ',' + quality;
    }

    const QTimeZone zone;
};

class HistoryJson : public HistoryText {
public:
    explicit HistoryJson(const QTimeZone& timeZone) : zone(timeZone) {}

    std::string header(bool) const override { return {}; }
    std::string line(const HistoryPoint& point, const RecordedSpan& span) const override {
        return row(point, span.sinceMs, span.value ? shownNumber(point, *span.value) : "null",
                   qualityOf(span)) +
               "}\n";
    }
    std::string line(const HistoryPoint& point, const AggregatedValue& value) const override {
        return row(point, value.beginMs, value.value ? shownResult(point, *value.value) : "null",
                   qualityOf(value)) +
               ",\"good_share\":" + shareText(value) + "}\n";
    }

private:
    std::string row(const HistoryPoint& point, std::int64_t timeMs, const std::string& value,
                    const char* quality) const {
        return "{\"time\":\"" + isoTimeText(timeMs, zone) + "\",\"point\":" + jsonText(point.name) +
               ",\"value\":" + value + (point.unit.empty() ? "" : ",\"unit\":" + jsonText(point.unit)) +
               ",\"quality\":\"" + quality + '"';
    }

    const QTimeZone zone;
};

} // namespace

std::unique_ptr<HistoryText> makeHistoryCsv(const QTimeZone& zone) {
    return std::make_unique<HistoryCsv>(zone);
}

std::unique_ptr<HistoryText> makeHistoryJson(const QTimeZone& zone) {
    return std::make_unique<HistoryJson>(zone);
}

} // namespace host
