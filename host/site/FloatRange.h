#pragma once

namespace host {

// Whether a floating-point format can hold a number.
enum class FloatFit { Fits, TooLarge, TooSmall };

// The controller's format: single precision with a narrower range of its own, or 0. For what it cannot hold
// the driver sends a word that means another number.
FloatFit floatFitOf(double value);
constexpr const char* smallestFloatText = "2.710506e-20"; // 2^-65
constexpr const char* largestFloatText = "9.223372e18";   // just below 2^63

// IEEE 754 single precision, the smallest denormalised numbers included.
FloatFit singleFitOf(double value);
constexpr const char* smallestSingleText = "1.401299e-45"; // just above 2^-149
constexpr const char* largestSingleText = "3.402823e38";   // just below 2^128

} // namespace host
