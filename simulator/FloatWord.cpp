#include "FloatWord.h"

#include <cmath>

namespace sim {

namespace {

constexpr std::uint32_t signBit = 0x80;
constexpr std::uint32_t exponentBits = 0x7F;
constexpr std::uint32_t largestWord = 0xFFFFFF7F;
constexpr int exponentBias = 64;
constexpr int mantissaBits = 24;

} // namespace

std::uint32_t encodeFloatWord(double value) {
    if (value == 0.0 || std::isnan(value))
        return 0;
    const std::uint32_t sign = std::signbit(value) ? signBit : 0;
    if (std::isinf(value))
        return largestWord | sign;
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(value), &exponent); // 0.5 <= fraction < 1
    long mantissa = std::lround(std::ldexp(fraction, mantissaBits));
    if (mantissa == 1L << mantissaBits) { // rounded up to 1
        mantissa >>= 1;
        ++exponent;
    }
    if (exponent < -exponentBias)
        return 0;
    if (exponent >= exponentBias)
        return largestWord | sign;
    return static_cast<std::uint32_t>(mantissa) << 8 | sign |
           static_cast<std::uint32_t>(exponent + exponentBias);
}

double decodeFloatWord(std::uint32_t word) {
    const int exponent = static_cast<int>(word & exponentBits) - exponentBias;
    const double magnitude = std::ldexp(static_cast<double>(word >> 8), exponent - mantissaBits);
    return (word & signBit) != 0 ? -magnitude : magnitude;
}

} // namespace sim
