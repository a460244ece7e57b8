#pragma once

#include "Admission.h"

#include <cstddef>
#include <optional>
#include <string>

namespace host {

// Where clients come in, which, and how many.
struct ControlDoor {
    std::string path;
    // The socket's directory is the host's own to make: it is made anew when somebody has removed it.
    bool isDirectoryOwn = false;
    UserId user = ownUser();
    std::optional<AdmittedGroup> group;
    std::size_t clients = 0; // at once; 0: as many as the descriptors allow

    std::optional<GroupId> groupId() const {
        return group ? std::optional<GroupId>(group->id) : std::nullopt;
    }
};

} // namespace host
