#include "HexDump.h"

#include "HexLine.h"

#include <algorithm>
#include <cstddef>

namespace sbus {

HexDump::HexDump(const char* dumpedBytes, int length) : at(dumpedBytes), end(dumpedBytes + length) {}

bool HexDump::next() {
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

} // namespace sbus
