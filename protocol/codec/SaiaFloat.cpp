#include "SaiaFloat.h"

#include <cmath>
#include <cstring>

namespace sbus {

namespace {

constexpr quint32 signBit = 0x80;

quint32 bitsOf(float number) {
    quint32 bits = 0;
    static_assert(sizeof bits == sizeof number);
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

} // namespace

double decodeSaiaFloat(quint32 word) {
    constexpr int mantissaBits = 24;
    constexpr quint32 exponentMask = 0x7F;
    constexpr int exponentOffset = 64;
    // 24 bits are exact in single precision, and so is every step of scaling them by a power of two that
    // stays in its range.
    const auto mantissa = std::ldexp(static_cast<float>(word >> 8), -mantissaBits);
    const int exponent = static_cast<int>(word & exponentMask) - exponentOffset;
    const float magnitude = std::ldexp(mantissa, exponent);
    return static_cast<double>((word & signBit) != 0 ? -magnitude : magnitude);
}

quint32 encodeSaiaFloat(double value) {
    constexpr int fractionBits = 23;
    constexpr quint32 exponentMask = 0xFF;
    constexpr quint32 singleSignBit = 0x8000'0000;
    constexpr quint32 leadingOne = 0x8000'0000;
    // From a bias of 127 on a mantissa of 1 to 2, to one of 64 on a mantissa of 1/2 to 1.
    constexpr quint32 biasDifference = 62;
    const quint32 single = bitsOf(static_cast<float>(value));
    const quint32 exponent = ((single >> fractionBits) & exponentMask) - biasDifference;
    const bool isInRange = (exponent & signBit) == 0;
    if (!isInRange)
        return exponent;
    const quint32 word = leadingOne | (single << 8) | exponent;
    return (single & singleSignBit) != 0 ? word | signBit : word;
}

} // namespace sbus
