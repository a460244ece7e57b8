#pragma once

#include "Simulator.h"

#include <iosfwd>

namespace sim {

// Where each line is reached and which stations answer there, a line of text each.
void printLines(const Simulator& simulator, std::ostream& out);
// What was counted, for each line and station.
void printCounts(const Simulator& simulator, std::ostream& out);

} // namespace sim
