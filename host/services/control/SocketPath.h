#pragma once

#include "runtime/Users.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// Where the control socket of a site may lie: named after the site file's real path, in "sbus-host" in
// $XDG_RUNTIME_DIR, or in the user's own directory beside the temporary files. In the order in which they are
// tried. $XDG_RUNTIME_DIR counts when it is a full path to a directory that is this user's own and closed to
// others: after `su` it is still the one of the user before. A socket that is open to a group lies in a
// directory of its own beside the temporary files. A service of the system has both kinds in its own folder.
std::vector<std::string> controlSocketPaths(const std::string& sitePath,
                                            std::optional<GroupId> group = std::nullopt);

// Those of them at which this user's host may listen, for a client, and the one of the site's service.
struct SocketPaths {
    std::vector<std::string> paths;
    std::vector<std::string> passedOver; // why others do not count
    std::optional<UserId> serviceUser;   // as whom the service of this site runs, if there is one
    std::vector<std::string> otherUsers; // who have a directory for the sockets of theirs beside the own one
};
SocketPaths findControlSockets(const std::string& sitePath, std::optional<GroupId> group = std::nullopt);

// The first of them whose directory can be had for this user alone, or for the group's members to enter.
struct SocketPlace {
    std::string path;
    std::string fault; // why there is none
};
SocketPlace prepareControlSocketPlace(const std::string& sitePath,
                                      std::optional<GroupId> group = std::nullopt);

// A path that was given by hand, seen from the current folder.
std::string fullSocketPath(const std::string& path);

} // namespace host
