#pragma once

#include <string>
#include <vector>

namespace host {

// One argument of a Windows command line, in quotes, which a program finds as it was given. Without the
// quotes a blank in a path would end it, and the system would look for a program at the part in front.
std::string quoteArgument(const std::string& argument);
// A command line of them all; the first one is the program.
std::string joinArguments(const std::vector<std::string>& arguments);

} // namespace host
