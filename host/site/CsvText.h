#pragma once

#include <string>

namespace host {

// Appends a cell of comma-separated values, in quotes where it needs them.
inline void appendCsvText(std::string& text, const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) {
        text += cell;
        return;
    }
    text += '"';
    for (const char character : cell)
        text.append(character == '"' ? 2 : 1, character);
    text += '"';
}

} // namespace host
