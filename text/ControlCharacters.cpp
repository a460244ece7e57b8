#include "ControlCharacters.h"

#include "Utf8.h"

#include <algorithm>

namespace text {

namespace {

bool isLineEndOrTab(char byte) {
    return byte == '\t' || byte == '\n' || byte == '\r';
}

// Whether the character at `at` is one; those of two bytes begin with C2.
bool isControlAt(std::string_view text, std::size_t at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x80)
        return isControl(byte);
    return byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) >= 0x80 &&
           static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

// Most of a text is passed over in blocks, which a compiler makes vector instructions of.
constexpr std::size_t blockSize = 64;

// Whether the block holds nothing but ASCII, line ends and tabs.
bool isPlainBlock(std::string_view text, std::size_t at) {
    if (text.size() - at < blockSize)
        return false;
    unsigned strange = 0;
    for (std::size_t i = 0; i < blockSize; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        const bool isBlank = byte == '\t' || byte == '\n' || byte == '\r';
        strange |=
            static_cast<unsigned>(static_cast<unsigned>(byte < 0x20) & static_cast<unsigned>(!isBlank)) |
            static_cast<unsigned>(byte >= 0x7F);
    }
    return strange == 0;
}

std::string hexadecimal(std::uint32_t number, int digits, const char* digitsFrom) {
    std::string hex;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        hex += digitsFrom[(number >> static_cast<unsigned>(shift)) & 0xF];
    return hex;
}

constexpr const char* upperDigits = "0123456789ABCDEF";
constexpr const char* lowerDigits = "0123456789abcdef";

// Copies the text and lets `replace` write each character that is not to be shown.
template <typename IsKept, typename Replace>
std::string replaced(std::string_view text, IsKept isKept, Replace replace) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Character character = characterAt(text, at);
        if (character.isValid && (!isControl(character.code) || isKept(text[at])))
            result.append(text, at, character.size);
        else
            replace(result, character);
        at += character.size;
    }
    return result;
}

void appendEscape(std::string& text, const Character& character) {
    text += "\\x" + hexadecimal(character.code, 2, upperDigits);
}

} // namespace

bool isControl(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

std::size_t findControl(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at)
        if (isControlAt(text, at))
            return at;
    return std::string_view::npos;
}

std::size_t findControlInLines(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        if (isPlainBlock(text, at)) {
            at += blockSize;
            continue;
        }
        for (const std::size_t end = std::min(at + blockSize, text.size()); at < end; ++at)
            if (isControlAt(text, at) && !isLineEndOrTab(text[at]))
                return at;
    }
    return std::string_view::npos;
}

std::string controlName(std::string_view text, std::size_t at) {
    return "U+" + hexadecimal(characterAt(text, at).code, 4, upperDigits);
}

std::string printable(std::string_view text) {
    return replaced(
        text, [](char) { return false; }, appendEscape);
}

std::string printableLines(std::string_view text) {
    return replaced(
        text, [](char byte) { return byte == '\n'; }, appendEscape);
}

std::string printableJson(std::string_view json) {
    return replaced(
        json, [](char) { return false; },
        [](std::string& text, const Character& character) {
            constexpr std::uint32_t replacement = 0xFFFD; // stands for a byte that is no character
            text += "\\u" + hexadecimal(character.isValid ? character.code : replacement, 4, lowerDigits);
        });
}

} // namespace text
