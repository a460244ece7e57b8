#pragma once

#include "Site.h"

// From the numbers in a controller to the values that people see and give, and back.
//
// A raw number is what the driver reads and writes: the whole number of an element, also of a register of
// format ieee, whose 32 bits it is; of format float the number that the controller's word stands for.
namespace host {

// value = number x scale + offset. NaN or infinite when a register of format ieee holds that.
double valueOf(const Point& point, double raw);
bool isNumber(const Point& point, double raw);

// What is to be written so that a point has a value, or why the controller cannot take it, told so that
// somebody can act on it. Exact: of several whole numbers none is chosen that means another value; of the
// floating-point formats it is the nearest number.
struct RawNumber {
    double raw = 0;
    std::string fault; // empty: none
};
RawNumber rawOf(const Point& point, double value);

// Whether what people see is anything but the raw number.
bool hasRaw(const Point& point);
// Empty when the point has none.
const std::string& unitOf(const Point& point);

} // namespace host
