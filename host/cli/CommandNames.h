#pragma once

#include <string>

namespace CLI {
class App;
}

namespace host {

// After a command line was found wrong for want of a sub-command: whether there is none or one that is not
// known, and which there are. Empty when that is not what is wrong.
std::string commandFault(const CLI::App& program);

// Has the usage lines of the sub-commands of `command` name what stands in front of them: "sbus-host ctl SITE
// poll [OPTIONS]".
void nameArgumentInUsage(CLI::App& command, const std::string& argument);

} // namespace host
