#pragma once

namespace host {

// Whether the controller's floating-point format can hold a number: single precision with a narrower range of
// its own, or 0. For what it cannot hold the driver sends a word that means another number.
enum class FloatFit { Fits, TooLarge, TooSmall };

constexpr const char* smallestFloatText = "2.710506e-20"; // 2^-65
constexpr const char* largestFloatText = "9.223372e18";   // just below 2^63

FloatFit floatFitOf(double value);

} // namespace host
