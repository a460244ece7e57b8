#pragma once

namespace host {

// A register whose 32 bits are an IEEE 754 number of single precision; the driver reads and writes them as a
// signed whole number. Exact in both directions.
double numberOfIeeeWord(double word);
// The word of the number that is nearest; it fits (singleFitOf).
double ieeeWordOf(double number);

} // namespace host
