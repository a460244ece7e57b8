#pragma once

#include "runtime/Users.h"

#include <string>

namespace host {

// Makes the directory for log files, unless it is there. Empty, or why logs are not written there: nobody but
// `user` and root may have put links into it or be able to, since they would lead what is written to any
// file of this user's.
std::string prepareLogDirectory(const std::string& path, UserId user = ownUser());

} // namespace host
