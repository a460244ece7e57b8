#include "ValueDescription.h"

#include "site/NumberText.h"
#include "site/PointText.h"
#include "site/PointValue.h"

#include <cmath>

namespace host {

namespace {

constexpr double exampleNumber = 1000;

std::string withUnit(double number, const Point& point) {
    const std::string& unit = unitOf(point);
    return numberText(number) + (unit.empty() ? "" : " " + unit);
}

std::string formulaText(const Point& point, const Engineering& engineering) {
    const Scaling& scaling = engineering.scaling;
    std::string text;
    if (scaling.scale() != 1)
        text += " x " + numberText(scaling.scale());
    if (scaling.offset() != 0)
        text += (scaling.offset() < 0 ? " - " : " + ") + numberText(std::fabs(scaling.offset()));
    if (!engineering.unit.empty())
        text += (scaling.isNone() ? " in " : " ") + engineering.unit;
    if (!scaling.isNone() && !point.isIeee)
        text += ": " + numberText(exampleNumber) + " is " + valueTextWithUnit(point, exampleNumber);
    if (engineering.deadband > 0)
        text += "; changes below " + withUnit(engineering.deadband, point) + " are not told";
    return text;
}

} // namespace

const char* formatText(const Point& point) {
    return point.isIeee ? "an IEEE 754 number" : point.isFloat ? "a float" : "an integer";
}

bool isConverted(const Point& point) {
    return point.engineering != nullptr || point.isIeee;
}

std::string describeValue(const Point& point) {
    std::string text = '"' + point.name + "\" is " + toText(point.address);
    if (point.isFloat || point.isIeee)
        text += std::string(" as ") + formatText(point);
    if (point.engineering)
        text += formulaText(point, *point.engineering);
    return text;
}

} // namespace host
