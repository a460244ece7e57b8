#include "FloatRange.h"

#include <cmath>

namespace host {

FloatFit floatFitOf(double value) {
    const double end = std::ldexp(1.0, 63);
    const double smallest = std::ldexp(1.0, -65);
    const double magnitude = std::fabs(value);
    if (value == 0)
        return FloatFit::Fits;
    // As the driver rounds it; no number that single precision cannot hold gets there.
    if (!(magnitude < end) || static_cast<double>(static_cast<float>(magnitude)) >= end)
        return FloatFit::TooLarge;
    return static_cast<double>(static_cast<float>(magnitude)) < smallest ? FloatFit::TooSmall
                                                                         : FloatFit::Fits;
}

FloatFit singleFitOf(double value) {
    // Between the largest number and this one single precision rounds down.
    const double end = std::ldexp(1.0, 128) - std::ldexp(1.0, 103);
    const double magnitude = std::fabs(value);
    if (value == 0)
        return FloatFit::Fits;
    if (!(magnitude < end))
        return FloatFit::TooLarge;
    // Of what lies below half of the smallest number single precision makes 0.
    return magnitude <= std::ldexp(1.0, -150) ? FloatFit::TooSmall : FloatFit::Fits;
}

} // namespace host
