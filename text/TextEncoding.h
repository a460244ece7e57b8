#pragma once

#include "Utf8.h"

#include <string>

// The bytes of a text file as UTF-8, whichever program has saved them. Pure; any thread.
namespace text {

enum class Encoding { Utf8, Utf16, Windows1252 };

struct DecodedText {
    std::string utf8; // without a byte-order mark
    Encoding encoding = Encoding::Utf8;
    Position notUtf8;  // of what makes it Windows-1252
    std::string fault; // why it is no text: "is UTF-16 that breaks off"; empty for a good one
};

// UTF-8 with or without a byte-order mark, UTF-16 with one, either end first; what is neither is taken for
// Windows-1252, in which all but five bytes are characters.
DecodedText decodeText(std::string bytes);

} // namespace text
