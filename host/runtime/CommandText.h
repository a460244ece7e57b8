#pragma once

#include <HalvexDriverComponent/Halvex.h>

namespace host {

// How a command ended: "done", "no answer in time", ...
const char* resultText(Halvex::DriverErrorResult result);

} // namespace host
