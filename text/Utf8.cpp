#include "Utf8.h"

#include <algorithm>

namespace text {

namespace {

constexpr std::uint32_t highestCode = 0x10FFFF;

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

bool isSurrogate(std::uint32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

// The bytes of a character that begins with `first`; 0 for what begins none.
std::size_t sizeBehind(unsigned char first) {
    return first < 0x80             ? 1
           : (first & 0xE0) == 0xC0 ? 2
           : (first & 0xF0) == 0xE0 ? 3
           : (first & 0xF8) == 0xF0 ? 4
                                    : 0;
}

// Most of a text is passed over in blocks, which a compiler makes vector instructions of.
constexpr std::size_t blockSize = 64;

bool isAsciiBlock(std::string_view text, std::size_t at) {
    if (text.size() - at < blockSize)
        return false;
    unsigned bits = 0;
    for (std::size_t i = 0; i < blockSize; ++i)
        bits |= static_cast<unsigned char>(text[at + i]);
    return bits < 0x80;
}

} // namespace

Character characterAt(std::string_view text, std::size_t at) {
    constexpr std::uint32_t lowestOfSize[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t size = sizeBehind(first);
    if (size == 1)
        return {first, 1, true};
    const Character invalid{first, 1, false};
    if (size == 0 || size > text.size() - at)
        return invalid;
    std::uint32_t code = first & (0xFFU >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if (!isContinuation(byte))
            return invalid;
        code = (code << 6) | (byte & 0x3FU);
    }
    if (code < lowestOfSize[size] || code > highestCode || isSurrogate(code))
        return invalid;
    return {code, size, true};
}

void appendUtf8(std::string& text, std::uint32_t code) {
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto appendRest = [&append, code](unsigned shift) { append(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | (code >> 6));
        appendRest(0);
    } else if (code < 0x10000) {
        append(0xE0 | (code >> 12));
        appendRest(6);
        appendRest(0);
    } else {
        append(0xF0 | (code >> 18));
        appendRest(12);
        appendRest(6);
        appendRest(0);
    }
}

std::size_t findInvalidUtf8(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        if (isAsciiBlock(text, at)) {
            at += blockSize;
            continue;
        }
        for (const std::size_t end = std::min(at + blockSize, text.size()); at < end;) {
            const Character character = characterAt(text, at);
            if (!character.isValid)
                return at;
            at += character.size;
        }
    }
    return std::string_view::npos;
}

Position positionOf(std::string_view text, std::size_t at) {
    const std::string_view before = text.substr(0, at);
    Position position;
    position.line = static_cast<unsigned>(1 + std::count(before.begin(), before.end(), '\n'));
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    for (const char byte : before.substr(lineStart))
        if (!isContinuation(static_cast<unsigned char>(byte)))
            ++position.column;
    return position;
}

} // namespace text
