#include "TextEncoding.h"

#include <array>

namespace text {

namespace {

bool startsWith(const std::string& bytes, std::string_view start) {
    return bytes.compare(0, start.size(), start) == 0;
}

DecodedText refuse(const std::string& fault) {
    DecodedText refused;
    refused.fault = fault;
    return refused;
}

// The 16-bit units of a text, behind its byte-order mark.
class Units {
public:
    Units(const std::string& utf16, bool bigEnd) : bytes(utf16), isBigEnd(bigEnd) {}

    bool atEnd() const { return position + 1 >= bytes.size(); }
    std::uint32_t next() {
        const std::uint32_t first = static_cast<unsigned char>(bytes[position]);
        const std::uint32_t second = static_cast<unsigned char>(bytes[position + 1]);
        position += 2;
        return isBigEnd ? (first << 8) | second : (second << 8) | first;
    }

private:
    const std::string& bytes;
    const bool isBigEnd;
    std::size_t position = 2;
};

DecodedText decodeUtf16(const std::string& bytes, bool isBigEnd) {
    if (bytes.size() % 2 != 0)
        return refuse("is UTF-16 that ends within a character");
    DecodedText decoded;
    decoded.encoding = Encoding::Utf16;
    decoded.utf8.reserve(bytes.size() / 2);
    for (Units units(bytes, isBigEnd); !units.atEnd();) {
        std::uint32_t code = units.next();
        const bool isFirstHalf = code >= 0xD800 && code < 0xDC00;
        const std::uint32_t secondHalf = isFirstHalf && !units.atEnd() ? units.next() : 0;
        if (secondHalf >= 0xDC00 && secondHalf < 0xE000)
            code = 0x10000 + ((code - 0xD800) << 10) + (secondHalf - 0xDC00);
        else if (code >= 0xD800 && code < 0xE000)
            return refuse("is UTF-16 with half a character in line " +
                          std::to_string(positionOf(decoded.utf8, decoded.utf8.size()).line));
        appendUtf8(decoded.utf8, code);
    }
    return decoded;
}

// 80 to 9F; 0 for those that are no character. All others are as in Unicode.
constexpr std::array<std::uint32_t, 32> windowsCharacters = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

DecodedText decodeWindows1252(const std::string& bytes, std::size_t firstInvalid) {
    DecodedText decoded;
    decoded.encoding = Encoding::Windows1252;
    decoded.notUtf8 = positionOf(bytes, firstInvalid);
    decoded.utf8.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        const std::uint32_t code = value >= 0x80 && value < 0xA0 ? windowsCharacters[value - 0x80U] : value;
        if (code == 0 && value != 0)
            return refuse("is neither UTF-8 nor Windows-1252 (line " +
                          std::to_string(positionOf(decoded.utf8, decoded.utf8.size()).line) + ")");
        appendUtf8(decoded.utf8, code);
    }
    return decoded;
}

} // namespace

DecodedText decodeText(std::string bytes) {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    if (startsWith(bytes, "\xFF\xFE"))
        return decodeUtf16(bytes, false);
    if (startsWith(bytes, "\xFE\xFF"))
        return decodeUtf16(bytes, true);
    if (startsWith(bytes, "PK\x03\x04"))
        return refuse("is a workbook or another packed file, not text");
    const bool isMarked = startsWith(bytes, utf8Mark);
    if (isMarked)
        bytes.erase(0, utf8Mark.size());
    const std::size_t invalid = findInvalidUtf8(bytes);
    // A text has no zero bytes; UTF-16 without its mark is full of them.
    if (bytes.find('\0') != std::string::npos)
        return refuse(
            "holds zero bytes, as UTF-16 without a byte-order mark does, and files that are no text");
    if (invalid != std::string::npos && isMarked)
        return refuse("begins as UTF-8, but is none in line " +
                      std::to_string(positionOf(bytes, invalid).line));
    if (invalid != std::string::npos)
        return decodeWindows1252(bytes, invalid);
    DecodedText decoded;
    decoded.utf8 = std::move(bytes);
    return decoded;
}

} // namespace text
