#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Characters as UTF-8. Pure; any thread.
namespace text {

// A character cut off a text. Bytes that are no UTF-8 come one at a time, with isValid false.
struct Character {
    std::uint32_t code = 0;
    std::size_t size = 1; // in bytes
    bool isValid = false;
};
// `at` lies within the text.
Character characterAt(std::string_view text, std::size_t at);

void appendUtf8(std::string& text, std::uint32_t code);

// Where the first byte stands that is no UTF-8; npos where all is.
std::size_t findInvalidUtf8(std::string_view text);

// Counted from 1, in characters.
struct Position {
    unsigned line = 1;
    unsigned column = 1;
};
Position positionOf(std::string_view text, std::size_t at);

} // namespace text
