#include "ReadingText.h"

#include "ChangeText.h"
#include "ValueText.h"
#include "site/PointValue.h"

namespace host {

const char* const readingCsvHeader = "address,value,time,quality";

namespace {

// As the element was asked for: one register may be read in both forms.
std::string elementText(const Point& point) {
    return toText(point.address) + (point.isFloat ? ":float" : point.isIeee ? ":ieee" : "");
}

bool isGood(const PointState& state) {
    return state.quality == PointQuality::Good;
}

// Of a register of format ieee, which may hold no number.
std::string rawPart(const Point& point, const PointState& state) {
    if (!hasRaw(point))
        return {};
    std::string text = ",\"raw\":";
    if (state.hasValue())
        appendRaw(text, point, state.value);
    else
        text += "null";
    return text;
}

} // namespace

std::string readingAsText(const Point& point, double raw) {
    return elementText(point) + " = " + valueTextWithUnit(point, raw);
}

std::string readingAsJson(const Point& point, const PointState& state) {
    return "{\"address\":" + jsonText(elementText(point)) +
           ",\"value\":" + (isGood(state) ? valueText(point, state.value) : "null") + rawPart(point, state) +
           ",\"time\":" + (state.hasValue() ? jsonText(utcTimeText(state.valueTimeMs)) : "null") +
           ",\"quality\":" + jsonText(toText(state.quality)) + "}";
}

std::string readingAsCsv(const Point& point, const PointState& state) {
    return elementText(point) + ',' + (state.hasValue() ? valueText(point, state.value) : "") + ',' +
           (state.hasValue() ? utcTimeText(state.valueTimeMs) : "") + ',' + toText(state.quality);
}

} // namespace host
