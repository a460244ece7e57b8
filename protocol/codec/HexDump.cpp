#include "HexDump.h"

#include <algorithm>
#include <cstddef>

namespace sbus {

HexDump::HexDump(const char* dumpedBytes, int length) : at(dumpedBytes), end(dumpedBytes + length) {}

bool HexDump::next() {
    constexpr std::ptrdiff_t bytesInLine = 18;
    constexpr int charactersOfByte = 3;
    constexpr char digits[] = "0123456789ABCDEF";
    if (begun && at == end)
        return false;
    begun = true;
    const char* const lineEnd = at + std::min(bytesInLine, end - at);
    text.resize(static_cast<int>(lineEnd - at) * charactersOfByte);
    for (QChar* character = text.data(); at != lineEnd; ++at) {
        const auto byte = static_cast<quint8>(*at);
        *character++ = QLatin1Char(digits[byte >> 4]);
        *character++ = QLatin1Char(digits[byte & 0x0F]);
        *character++ = QLatin1Char(' ');
    }
    return true;
}

} // namespace sbus
