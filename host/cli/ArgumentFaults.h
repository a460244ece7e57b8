#pragma once

#include <string>

// Why what a command line says will not do, for the options that several sub-commands have; empty when it
// will.
namespace host {

// One text of what is wrong and what would be right; empty when nothing is wrong.
std::string faultText(const std::string& what, const std::string& remedy);

std::string linkFault(const std::string& text);
std::string breakDelayFault(const std::string& text);

} // namespace host
