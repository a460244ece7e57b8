#pragma once

#include "ValueStore.h"

#include <chrono>
#include <string>

namespace host {

// A whole number without exponent or point; a float with the fewest digits that give the same float again.
std::string valueText(const Point& point, double value);

const char* toText(PointQuality quality); // "good", "bad", "never read"

// "0.05 ms"
std::string millisecondsText(std::chrono::microseconds duration);
// "2026-11-21T09:30:00.125Z"
std::string utcTimeText(qint64 milliseconds);
// "2026-11-21 10:30:00.125", where the host is
std::string localTimeText(qint64 milliseconds);

} // namespace host
