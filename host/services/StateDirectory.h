#pragma once

#include <string>

// Where a service keeps what outlives the process, one file for each site file.
namespace host {

// `directory`, or where it is empty the user's own: $XDG_STATE_HOME or ~/.local/state. Empty when the user
// has none.
std::string stateDirectory(const std::string& directory);
// The site file's path without links and dots.
std::string realSitePath(const std::string& siteFile);
// "KIND-" and a mark that no other site file of this user has, and the ending.
std::string stateFileName(const std::string& kind, const std::string& realSitePath,
                          const std::string& ending);

} // namespace host
