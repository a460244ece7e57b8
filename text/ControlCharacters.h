#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Characters that a terminal obeys instead of showing them: U+0000 to U+001F, U+007F to U+009F. Pure; any
// thread.
namespace text {

bool isControl(std::uint32_t code);

// Where the first of them stands, npos where there is none. Bytes that are no UTF-8 are none.
std::size_t findControl(std::string_view text);
// The same, but for tabs and line ends.
std::size_t findControlInLines(std::string_view text);
// "U+001B"
std::string controlName(std::string_view text, std::size_t at);

// For a line of a terminal: control characters, and bytes that are no UTF-8, are written as "\x1B".
std::string printable(std::string_view text);
// The same for a text of several lines, whose line ends stay.
std::string printableLines(std::string_view text);
// For a line of JSON: what a terminal would obey is written as JSON does, "\u009b".
std::string printableJson(std::string_view json);

} // namespace text
