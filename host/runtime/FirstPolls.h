#pragma once

#include "HostRuntime.h"

#include <vector>

namespace host {

// The lines whose first poll has not ended yet, well or badly, and that could still be opened. A line without
// anything to poll is left out once it is open. Pure.
std::vector<const Channel*> linesBeforeFirstPoll(const SiteFigures& figures);

} // namespace host
