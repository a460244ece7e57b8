#pragma once

#include "runtime/HostRuntime.h"

namespace host {

// The URL of the end in use, with "secondary" behind it when it is that one.
std::string endInUseText(const ChannelFigures& figures);

// What has gone wrong on the line, each figure led by two blanks; empty when nothing has.
std::string troubleText(const ChannelStatus& status);

} // namespace host
