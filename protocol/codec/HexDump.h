#pragma once

#include "HexLine.h"

#include <QString>

#include <algorithm>
#include <utility>

namespace sbus {

// Calls `write` with each line of a hex dump: upper-case, 18 bytes a line, one blank after each byte. No
// bytes give one empty line. A line is good during the call alone, unless it is copied.
template <typename Write>
void forEachHexLine(const char* bytes, int length, Write write) {
    constexpr int bytesInLine = 18;
    QString line(std::min(length, bytesInLine) * hexCharactersOfByte, Qt::Uninitialized); // one for all
    do {
        const int count = std::min(length, bytesInLine);
        const int characters = count * hexCharactersOfByte;
        if (line.size() != characters)
            line.resize(characters);
        // A string has room for one character behind its end, which data() leaves 0.
        writeHexLine(line.data(), bytes, count);
        write(std::as_const(line));
        bytes += count;
        length -= count;
    } while (length > 0);
}

} // namespace sbus
