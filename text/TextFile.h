#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace text {

// What a file holds, or why it was not read: "is a directory".
struct FileText {
    std::optional<std::string> contents;
    std::string fault;
};

// Reads a regular file of at most `mostBytes`; a link to one counts as one. Anything else (a directory, a
// device, a named pipe, which might never end) is refused unopened.
FileText readTextFile(const std::string& path, std::uintmax_t mostBytes);

} // namespace text
