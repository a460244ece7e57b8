#include "PointValue.h"

#include "FloatRange.h"
#include "IeeeWord.h"
#include "NumberText.h"
#include "WordRange.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

// How far from a whole number the raw number of a value may be, for the rounding of the numbers in between:
// with the largest registers and offsets that is some millionth.
constexpr double tolerance = 1e-5;

const Scaling& scalingOf(const Point& point) {
    static const Scaling none;
    return point.engineering ? point.engineering->scaling : none;
}

// "the value does not fit a register; give a whole number from 0 to 100"
RawNumber refuse(const Point& point, const std::string& remedy) {
    return {0,
            std::string("the value does not fit ") + wordMediaName(point.address.media) + "; give " + remedy};
}

RawNumber plainWord(const Point& point, double value) {
    if (isWordOf(point.address.media, value))
        return {value, {}};
    const WordRange range = wordRangeOf(point.address.media);
    return refuse(point, "a whole number from " + std::to_string(range.lowest) + " to " +
                             std::to_string(range.highest));
}

RawNumber scaledWord(const Point& point, const Scaling& scaling, double value) {
    const auto ordered = [&scaling](double one, double other) {
        return std::minmax({scaling.valueOf(one), scaling.valueOf(other)});
    };
    const double raw = scaling.rawOf(value);
    const double nearest = std::round(raw);
    const bool isStep = std::fabs(raw - nearest) <= tolerance;
    const WordRange range = wordRangeOf(point.address.media);
    const auto first = static_cast<double>(range.lowest);
    const auto last = static_cast<double>(range.highest);
    const double within = isStep ? nearest : raw;
    if (within < first || within > last) {
        const auto [lowest, highest] = ordered(first, last);
        return refuse(point, "one from " + numberText(lowest) + " to " + numberText(highest));
    }
    if (isStep)
        return {nearest, {}};
    const auto [below, above] = ordered(std::floor(raw), std::ceil(raw));
    return refuse(point, numberText(below) + " or " + numberText(above));
}

RawNumber floatWord(const Scaling& scaling, double value) {
    const double number = scaling.rawOf(value);
    if (floatFitOf(number) == FloatFit::Fits)
        return {static_cast<double>(static_cast<float>(number)), {}};
    return {0, std::string("the value does not fit the controller's floating-point format; give 0, or a "
                           "size from ") +
                   smallestFloatText + " to " + largestFloatText +
                   (scaling.isNone() ? "" : ", before scale and offset")};
}

RawNumber ieeeWord(const Scaling& scaling, double value) {
    const double number = scaling.rawOf(value);
    if (singleFitOf(number) == FloatFit::Fits)
        return {ieeeWordOf(number), {}};
    return {0, std::string("the value does not fit single precision; give 0, or a size from ") +
                   smallestSingleText + " to " + largestSingleText +
                   (scaling.isNone() ? "" : ", before scale and offset")};
}

} // namespace

double valueOf(const Point& point, double raw) {
    const double number = point.isIeee ? numberOfIeeeWord(raw) : raw;
    return point.engineering ? point.engineering->scaling.valueOf(number) : number;
}

bool isNumber(const Point& point, double raw) {
    return std::isfinite(valueOf(point, raw));
}

RawNumber rawOf(const Point& point, double value) {
    if (!std::isfinite(value))
        return {0, "the value is no number; give one"};
    const Scaling& scaling = scalingOf(point);
    if (point.isFloat)
        return floatWord(scaling, value);
    if (point.isIeee)
        return ieeeWord(scaling, value);
    return scaling.isNone() ? plainWord(point, value) : scaledWord(point, scaling, value);
}

bool hasRaw(const Point& point) {
    return point.isIeee ||
           (point.engineering && (!point.engineering->scaling.isNone() || point.engineering->decimals));
}

const std::string& unitOf(const Point& point) {
    static const std::string none;
    return point.engineering ? point.engineering->unit : none;
}

} // namespace host
