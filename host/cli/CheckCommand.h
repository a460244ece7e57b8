#pragma once

#include "runtime/ExitStatus.h"

#include <string>

namespace host {

// Tells what is wrong with a site file, or what it will cost.
ExitStatus checkSiteFile(const std::string& path);

} // namespace host
