#include "PointText.h"

#include "NumberText.h"
#include "PointValue.h"

#include <charconv>
#include <cmath>

namespace host {

namespace {

void appendFull(std::string& text, const Point& point, double value) {
    if (point.isFloat || point.isIeee)
        appendSingle(text, value); // the register holds no more than that
    else
        appendNumber(text, value);
}

void appendNoNumber(std::string& text, double value) {
    text += std::isnan(value) ? "NaN" : value > 0 ? "inf" : "-inf";
}

double numberIn(const std::string& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void appendConverted(std::string& text, const Point& point, double value) {
    if (!std::isfinite(value))
        appendNoNumber(text, value);
    else if (point.engineering && point.engineering->decimals)
        appendFixed(text, value, *point.engineering->decimals);
    else
        appendFull(text, point, value);
}

} // namespace

void appendValue(std::string& text, const Point& point, double raw) {
    if (point.engineering || point.isIeee)
        appendConverted(text, point, valueOf(point, raw));
    else
        appendFull(text, point, raw);
}

void appendRaw(std::string& text, const Point& point, double raw) {
    if (point.isFloat)
        appendSingle(text, raw);
    else
        appendNumber(text, raw);
}

std::string valueText(const Point& point, double raw) {
    std::string text;
    appendValue(text, point, raw);
    return text;
}

std::string valueTextWithUnit(const Point& point, double raw) {
    const std::string& unit = unitOf(point);
    return valueText(point, raw) + (unit.empty() ? "" : " " + unit);
}

double shownValue(const Point& point, double raw) {
    std::string text;
    appendFull(text, point, valueOf(point, raw));
    return numberIn(text);
}

double shownRaw(const Point& point, double raw) {
    std::string text;
    appendRaw(text, point, raw);
    return numberIn(text);
}

} // namespace host
