#pragma once

#include "site/Site.h"

#include <string>

namespace host {

// "an integer", "a float", "an IEEE 754 number"
const char* formatText(const Point& point);

// Whether anything stands between the number in the controller and the value.
bool isConverted(const Point& point);
// "\"LEVEL\" is R2 x 0.01 - 20 m: 1000 is -10.00 m; changes below 0.5 m are not told"
std::string describeValue(const Point& point);

} // namespace host
