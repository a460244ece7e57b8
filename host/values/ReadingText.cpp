#include "ReadingText.h"

#include "ChangeText.h"
#include "ValueText.h"

namespace host {

const char* const readingCsvHeader = "address,value,time,quality";

namespace {

bool isGood(const PointState& state) {
    return state.quality == PointQuality::Good;
}

} // namespace

std::string readingAsText(const Point& point, double value) {
    return toText(point.address) + " = " + valueText(point, value);
}

std::string readingAsJson(const Point& point, const PointState& state) {
    return "{\"address\":" + jsonText(toText(point.address)) +
           ",\"value\":" + (isGood(state) ? valueText(point, state.value) : "null") +
           ",\"time\":" + (isGood(state) ? jsonText(utcTimeText(state.valueTimeMs)) : "null") +
           ",\"quality\":" + jsonText(toText(state.quality)) + "}";
}

std::string readingAsCsv(const Point& point, const PointState& state) {
    return toText(point.address) + ',' + (isGood(state) ? valueText(point, state.value) : "") + ',' +
           (isGood(state) ? utcTimeText(state.valueTimeMs) : "") + ',' + toText(state.quality);
}

} // namespace host
