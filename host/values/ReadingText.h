#pragma once

#include "ValueStore.h"

namespace host {

// What was read of one element, as one line of output without its line end. A reading that failed has quality
// "bad" and neither value nor time in JSON and comma-separated values; as text it is not shown at all. A
// register of format ieee that holds no number is "bad", too.
std::string readingAsText(const Point& point, double raw);
std::string readingAsJson(const Point& point, const PointState& state);
std::string readingAsCsv(const Point& point, const PointState& state);
extern const char* const readingCsvHeader;

} // namespace host
