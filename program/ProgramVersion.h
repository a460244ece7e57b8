// What a program says of itself: the release that it belongs to, and the commit that it was built from.
#pragma once

#include <string>

namespace release {

// As in "0.2.0".
const char* version();

// As in "commit 1a2b3c4d5e6f", with "-changed" behind it when files differed from the commit; "commit
// unknown" for a program that was built without git's history.
const char* commit();

// Program and version, and the commit in a line of its own.
std::string versionText(const std::string& program);

} // namespace release
