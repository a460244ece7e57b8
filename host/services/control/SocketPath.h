#pragma once

#include <string>
#include <vector>

namespace host {

// Where the control socket of a site may lie: named after the site file's real path, in "sbus-host" in
// $XDG_RUNTIME_DIR, or in the user's own directory beside the temporary files. In the order in which they are
// tried; who was started without $XDG_RUNTIME_DIR has the last one alone.
std::vector<std::string> controlSocketPaths(const std::string& sitePath);

// The first of them whose directory can be had for this user alone.
struct SocketPlace {
    std::string path;
    std::string fault; // why there is none
};
SocketPlace prepareControlSocketPlace(const std::string& sitePath);

} // namespace host
