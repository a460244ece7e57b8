#pragma once

#include "runtime/Users.h"

#include <optional>
#include <string>

namespace host {

// What tells this user's directory from those of others in a place for all.
std::string userTag();
// Makes the directory, unless it is there, for this user alone, or for the members of `group` to enter too.
// Empty, or why it cannot be had so.
std::string makePrivateDirectory(const std::string& path, std::optional<GroupId> group = std::nullopt);

// Whose a directory is that was found at a path, never through a symbolic link.
enum class DirectoryState {
    Missing,
    Own,          // and nobody else can change what is in it
    SomebodyElse, // its user, or somebody who can write to it, is another
};
struct FoundDirectory {
    DirectoryState state = DirectoryState::Missing;
    bool isClosed = false; // nobody but its user may enter
    std::string fault;     // why it is not this user's own
};
FoundDirectory findDirectory(const std::string& path);

} // namespace host
