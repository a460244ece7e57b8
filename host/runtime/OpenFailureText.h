#pragma once

#include "site/LinkUrl.h"

#include <string>

namespace host {

// Why an end of a line could not be opened, by the system's error number, and what to do about it: "cannot
// open serial:/dev/ttyUSB0?...: there is no device /dev/ttyUSB0; plug it in, or name another".
std::string cannotOpenReason(const LinkEnd& end, int result);
// Whether it is because another program has it open.
bool isInUse(int result);
// Whether it is because no address is known, or no network leads there.
bool isUnreachable(int result);

} // namespace host
