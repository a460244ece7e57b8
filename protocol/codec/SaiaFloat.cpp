#include "SaiaFloat.h"

#include <cmath>

namespace sbus {

double decodeSaiaFloat(quint32 word) {
    constexpr int mantissaBits = 24;
    constexpr quint32 signBit = 0x80;
    constexpr quint32 exponentMask = 0x7F;
    constexpr int exponentOffset = 64;
    // 24 bits are exact in single precision, and so is every step of scaling them by a power of two that
    // stays in its range.
    const auto mantissa = std::ldexp(static_cast<float>(word >> 8), -mantissaBits);
    const int exponent = static_cast<int>(word & exponentMask) - exponentOffset;
    const float magnitude = std::ldexp(mantissa, exponent);
    return static_cast<double>((word & signBit) != 0 ? -magnitude : magnitude);
}

} // namespace sbus
