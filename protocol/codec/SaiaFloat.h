#pragma once

#include <QtGlobal>

namespace sbus {

// The controller's floating-point word: bits 31 to 8 the mantissa, a fraction whose highest bit is 1/2;
// bit 7 the sign; bits 6 to 0 the exponent plus 64.

// An unnormalised mantissa counts as it stands.
double decodeSaiaFloat(quint32 word);
// Of `value` in single precision. Zero, and what lies beyond the format's range, become a word of the bare
// exponent: FF FF FF C2 for 0.0, 00 00 00 C1 for infinity.
quint32 encodeSaiaFloat(double value);

} // namespace sbus
