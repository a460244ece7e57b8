#pragma once

#include "TimeText.h"
#include "ValueStore.h"

#include <chrono>
#include <string>

namespace host {

// A whole number without exponent or point; a float with the fewest digits that give the same float again.
std::string valueText(const Point& point, double value);
void appendValue(std::string& text, const Point& point, double value);

// What the controller holds when `value`, which fits, was written to the point: of a float single precision.
double heldValue(const Point& point, double value);

const char* toText(PointQuality quality); // "good", "bad", "refused", "never read"

// "0.05 ms"
std::string millisecondsText(std::chrono::microseconds duration);

} // namespace host
