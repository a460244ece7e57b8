#pragma once

#include <string>

namespace host {

constexpr char pipeFolder[] = R"(\\.\pipe\)";

bool isPipe(const std::string& path);
// The name of the pipe that stands for a local socket at `path`; that of a pipe is its own.
std::wstring pipeName(const std::string& path);

} // namespace host
