#pragma once

#include <iosfwd>

namespace sim {

constexpr int exitGood = 0;
constexpr int exitUsage = 2; // also a site file that is not usable, and a line that cannot be opened

// sbus-sim from its arguments to its exit status. Plays until SIGINT, SIGTERM or the end of --for, then
// prints what was counted.
int runProgram(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

} // namespace sim
