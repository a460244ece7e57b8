#pragma once

#include <string>

namespace host {

// With the fewest digits that give the same number again: a whole number below 2^53 without exponent or
// point, "0.1", "1e+20", "nan".
std::string numberText(double number);
void appendNumber(std::string& text, double number);
// Likewise, for a number of single precision.
void appendSingle(std::string& text, double number);
// With so many decimals, rounded: "21.50". Up to 1e100.
void appendFixed(std::string& text, double number, unsigned decimals);

// How many decimals numberText() would show without an exponent.
unsigned countDecimals(double number);

} // namespace host
