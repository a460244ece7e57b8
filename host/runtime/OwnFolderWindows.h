#pragma once

#include <string>

namespace host {

// Makes the folder, unless it is there, for this user, SYSTEM and administrators alone: nothing is inherited
// from the folders around it. Empty, or why it cannot be had so. Not through a link.
std::string makeOwnFolder(const std::string& path);
// The same with the rights of a security descriptor in the system's text form.
std::string makeFolder(const std::string& path, const std::string& descriptor);

} // namespace host
