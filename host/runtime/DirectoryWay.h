#pragma once

#include "Users.h"

#include <string>

// Who could put something else in the place of a directory that `user` writes to, so that what is written
// goes to another of the user's files. Nobody is asked for but other users: the user and root can write there
// anyway. Nor are the members of groups, because on some systems /var/log is open to one. Faults are texts
// that tell what is wrong; empty: all is well.
namespace host {

// Of a link that another user has made. None where there is no link, or nothing at all.
std::string linkFault(const std::string& path, UserId user);

// Of links and directories on the way to `path`, as far as they are there, and of `path` itself where it is a
// link; what it leads to is left to the caller. A directory that everybody may write to is a fault, but for
// one like /tmp, in which only the owner of a file may replace it.
std::string wayFault(const std::string& path, UserId user);

} // namespace host
