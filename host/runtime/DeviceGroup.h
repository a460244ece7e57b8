#pragma once

#include <string>

namespace host {

// The group whose members may open this device; empty where there is none, or the system has no such groups.
std::string groupThatMayOpen(const std::string& device);

} // namespace host
