#pragma once

#include "Site.h"

// Values of points as all outputs show them.
namespace host {

// The value of a raw number, rounded to the point's decimals; without those with the fewest digits that give
// the same value again, of the floating-point formats the same number of single precision. "NaN", "inf" or
// "-inf" for what is no number. Without the unit.
std::string valueText(const Point& point, double raw);
void appendValue(std::string& text, const Point& point, double raw);
// The raw number itself.
void appendRaw(std::string& text, const Point& point, double raw);

// "21.5 m"
std::string valueTextWithUnit(const Point& point, double raw);

// The numbers that are shown without decimals to round to: 0.1 for the number of single precision next to it.
double shownValue(const Point& point, double raw);
double shownRaw(const Point& point, double raw);

} // namespace host
