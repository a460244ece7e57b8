#include "ReadingText.h"

#include "ChangeText.h"
#include "ValueText.h"

namespace host {

const char* const readingCsvHeader = "address,value,time,quality";

namespace {

// As the element was asked for: one register may be read in both forms.
std::string elementText(const Point& point) {
    return toText(point.address) + (point.isFloat ? ":float" : "");
}

bool isGood(const PointState& state) {
    return state.quality == PointQuality::Good;
}

} // namespace

std::string readingAsText(const Point& point, double value) {
    return elementText(point) + " = " + valueText(point, value);
}

std::string readingAsJson(const Point& point, const PointState& state) {
    return "{\"address\":" + jsonText(elementText(point)) +
           ",\"value\":" + (isGood(state) ? valueText(point, state.value) : "null") +
           ",\"time\":" + (isGood(state) ? jsonText(utcTimeText(state.valueTimeMs)) : "null") +
           ",\"quality\":" + jsonText(toText(state.quality)) + "}";
}

std::string readingAsCsv(const Point& point, const PointState& state) {
    return elementText(point) + ',' + (isGood(state) ? valueText(point, state.value) : "") + ',' +
           (isGood(state) ? utcTimeText(state.valueTimeMs) : "") + ',' + toText(state.quality);
}

} // namespace host
