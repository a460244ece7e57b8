#pragma once

#include <cstdint>

namespace sim {

// The controller's floating-point word: bits 31 to 8 a fraction whose highest bit is 1/2, bit 7 the sign,
// bits 6 to 0 the exponent plus 64. Zero, and what is too small to show, is 0; what is too large, and
// infinity, is the largest word of that sign; what is no number is 0.
std::uint32_t encodeFloatWord(double value);
double decodeFloatWord(std::uint32_t word);

} // namespace sim
