#pragma once

#include "runtime/Users.h"

#include "site/Site.h"

namespace host {

// What a client of the control socket may do.
enum class Admission { Refused, Reads, Commands };

// Who may come in besides the socket's user and root.
struct AdmittedGroup {
    GroupId id = 0;
    ControlAccess access = ControlAccess::Read;
};

// A peer that the system does not tell is nobody's.
Admission judgeClient(const std::optional<Peer>& peer, UserId user,
                      const std::optional<AdmittedGroup>& group);

} // namespace host
