#pragma once

#include <string>

namespace host {

// What tells this user's directory from those of others in a place for all.
std::string userTag();
// Makes the directory, unless it is there, for this user alone. Empty, or why it cannot be had so.
std::string makePrivateDirectory(const std::string& path);

} // namespace host
