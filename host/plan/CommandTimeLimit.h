#pragma once

#include "site/Site.h"

#include <chrono>

namespace host {

// How long a command that was handed to the driver may rightly take on this line. The driver sends it before
// all polls that wait, but ends the request in progress first: at worst an integrity poll each of whose
// answers comes at the last moment. Then the command's own answer has its time. What is added covers what a
// disturbed line costs the driver.
std::chrono::milliseconds commandTimeLimit(const Channel& channel);

} // namespace host
