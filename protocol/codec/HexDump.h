#pragma once

#include "HexLine.h"

#include <QString>

#include <algorithm>
#include <cstddef>

namespace sbus {

// The lines of a hex dump: upper-case, 18 bytes a line, one blank after each byte. No bytes give one empty
// line. The lines are made one by one in the same place.
class HexDump {
public:
    // The bytes must stay until the last line is made.
    HexDump(const char* dumpedBytes, int length) : at(dumpedBytes), end(dumpedBytes + length) {}

    // Makes the next line; false behind the last one.
    bool next() {
        constexpr std::ptrdiff_t bytesInLine = 18;
        if (begun && at == end)
            return false;
        begun = true;
        const int bytes = static_cast<int>(std::min(bytesInLine, end - at));
        if (text.size() != bytes * hexCharactersOfByte)
            text.resize(bytes * hexCharactersOfByte);
        // A string has room for one character behind its end, which data() leaves 0.
        writeHexLine(text.data(), at, bytes);
        at += bytes;
        return true;
    }
    // Good until the next one is made.
    const QString& line() const { return text; }

private:
    const char* at;
    const char* const end;
    bool begun = false;
    QString text;
};

} // namespace sbus
