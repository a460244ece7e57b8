#include "HexDump.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace sbus {
namespace {

// The characters of one byte, "5A ", and the end of a text, whose place the next byte's take.
using ByteText = std::array<ushort, 4>;

constexpr std::array<ByteText, 256> makeByteTexts() {
    constexpr char digits[] = "0123456789ABCDEF";
    std::array<ByteText, 256> texts{};
    for (std::size_t byte = 0; byte < texts.size(); ++byte)
        texts[byte] = {static_cast<ushort>(digits[byte >> 4]), static_cast<ushort>(digits[byte & 0x0F]), ' ',
                       0};
    return texts;
}

constexpr std::array<ByteText, 256> byteTexts = makeByteTexts();

constexpr int bytesInLine = 18;
constexpr int charactersOfByte = 3;

void writeText(ushort* characters, char byte) {
    std::memcpy(characters, byteTexts[static_cast<quint8>(byte)].data(), sizeof(ByteText));
}

// Six at a time, in which the compiler leaves no loop: a turn of it costs more than a byte.
void writeLine(ushort* characters, const char* bytes, int count) {
    constexpr int atOnce = 6;
    for (; count >= atOnce; count -= atOnce)
        for (int i = 0; i < atOnce; ++i, ++bytes, characters += charactersOfByte)
            writeText(characters, *bytes);
    for (; count > 0; --count, ++bytes, characters += charactersOfByte)
        writeText(characters, *bytes);
}

} // namespace

HexDump::HexDump(const char* dumpedBytes, int length) : at(dumpedBytes), end(dumpedBytes + length) {}

bool HexDump::next() {
    if (begun && at == end)
        return false;
    begun = true;
    const int bytes = static_cast<int>(std::min<std::ptrdiff_t>(bytesInLine, end - at));
    if (text.size() != bytes * charactersOfByte)
        text.resize(bytes * charactersOfByte);
    writeLine(reinterpret_cast<ushort*>(text.data()), at, bytes);
    at += bytes;
    return true;
}

} // namespace sbus
