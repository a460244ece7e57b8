#pragma once

#include "Memory.h"
#include "SitePoint.h"

#include <chrono>
#include <vector>

namespace sim {

// Gives the moving elements of a controller the values that they have `elapsed` after the start: the same
// time gives the same values. Stations differ in phase, but for R200 to R299. `k` is the number within the
// range:
//
//   I0-I63, F0-F63   toggle, every 1 + k mod 10 seconds
//   R0-R99           ramp 0 to 999, a step each 100 ms
//   R100-R199        sine, -1000 to 1000, once a minute
//   R200-R299        counter, one a second
//   R300-R399        sine as floating-point words, 0.0 to 100.0, once a minute
//   R400-R499        ramp as floating-point words, 0.0 to 99.9, a step of 0.1 each 100 ms
//   T0-T63           ramp 600 down to 0, a step each 100 ms
//   C0-C63           counter, one each 1 + k mod 10 seconds
//
// Outputs and all other elements stand still.
void moveElements(Memory& memory, int station, std::chrono::milliseconds elapsed);

// The same for the site's points of that controller that those ranges do not move, or not in the form in
// which they are read: inputs and flags toggle, registers go up a ramp or, as floating-point words or IEEE
// 754 numbers, along a sine of 0 to 100, timers run down, counters count. `k` is the last two digits of the
// number. Outputs stand still.
void movePoints(Memory& memory, int station, const std::vector<SitePoint>& points,
                std::chrono::milliseconds elapsed);

} // namespace sim
