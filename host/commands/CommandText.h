#pragma once

#include <HalvexDriverComponent/Halvex.h>

// How a command ended, in words.
namespace host {

// For programs, which compare it: "success", "time-out", ...
const char* resultWord(Halvex::DriverErrorResult result);
// For people: "done", "no answer in time", ...
const char* resultText(Halvex::DriverErrorResult result);

} // namespace host
