#include "Scaling.h"

#include "NumberText.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double exactIntegers = 9007199254740992.0; // 2^53: whole numbers below are exact
constexpr unsigned mostDecimals = 22;                // 10^22 is the highest power of ten that is exact

bool isExact(double whole) {
    return std::fabs(whole) < exactIntegers;
}

} // namespace

Scaling::Scaling(double valueScale, double valueOffset) : factor(valueScale), shift(valueOffset) {
    const unsigned decimals = std::max(countDecimals(factor), countDecimals(shift));
    power = decimals <= mostDecimals ? std::pow(10.0, decimals) : 0;
    wholeFactor = std::round(factor * power);
    wholeShift = std::round(shift * power);
    if (!isExact(wholeFactor) || !isExact(wholeShift))
        power = 0;
}

double Scaling::valueOf(double raw) const {
    const double product = raw * wholeFactor;
    const double sum = product + wholeShift;
    if (power > 0 && std::trunc(raw) == raw && isExact(product) && isExact(sum))
        return sum / power; // one rounding, of the exact decimal number
    return raw * factor + shift;
}

} // namespace host
