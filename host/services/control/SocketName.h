#pragma once

#include <string>

namespace host {

// What a site's control socket is called: short, and the same for every way to the site file.
std::string socketName(const std::string& sitePath);

} // namespace host
