#include "TextEncoding.h"

#include <gtest/gtest.h>

using text::DecodedText;
using text::Encoding;
using namespace std::string_literals;

namespace {

// "Brücke €" in the two orders of UTF-16.
const std::string bridgeLittle = "\xFF\xFE"
                                 "B\0r\0\xFC\0"
                                 "c\0k\0e\0 \0\xAC\x20"s;
const std::string bridgeBig = "\xFE\xFF"
                              "\0B\0r\0\xFC\0c\0k\0e\0 \x20\xAC"s;

} // namespace

TEST(TextEncoding, LeavesUtf8AsItIs) {
    for (const char* const mark : {"", "\xEF\xBB\xBF"}) {
        const DecodedText decoded = text::decodeText(mark + "Brücke €"s);
        EXPECT_EQ(decoded.utf8, "Brücke €");
        EXPECT_EQ(decoded.encoding, Encoding::Utf8);
        EXPECT_EQ(decoded.fault, "");
    }
}

TEST(TextEncoding, ReadsUtf16OfEitherOrder) {
    for (const std::string& bytes : {bridgeLittle, bridgeBig}) {
        const DecodedText decoded = text::decodeText(bytes);
        EXPECT_EQ(decoded.utf8, "Brücke €");
        EXPECT_EQ(decoded.encoding, Encoding::Utf16);
    }
}

TEST(TextEncoding, JoinsTheHalvesOfAUtf16Character) {
    EXPECT_EQ(text::decodeText("\xFF\xFE\x3D\xD8\x00\xDE"s).utf8, "\xF0\x9F\x98\x80");
}

TEST(TextEncoding, RefusesUtf16ThatBreaksOff) {
    EXPECT_EQ(text::decodeText("\xFF\xFE"
                               "a"s)
                  .fault,
              "is UTF-16 that ends within a character");
    for (const std::string& half : {"\x3D\xD8"s, "\x3D\xD8z\0"s, "\x00\xDE"s})
        EXPECT_EQ(text::decodeText("\xFF\xFE"
                                   "a\0\n\0"s +
                                   half)
                      .fault,
                  "is UTF-16 with half a character in line 2");
}

TEST(TextEncoding, TakesWhatIsNoUtf8ForWindows1252) {
    const DecodedText decoded = text::decodeText("a\nBr\xFC"
                                                 "cke \x80");
    EXPECT_EQ(decoded.utf8, "a\nBrücke €");
    EXPECT_EQ(decoded.encoding, Encoding::Windows1252);
    EXPECT_EQ(decoded.notUtf8.line, 2U);
    EXPECT_EQ(decoded.notUtf8.column, 3U);
}

TEST(TextEncoding, RefusesBytesThatAreNoCharacterAnywhere) {
    for (const char* const byte : {"\x81", "\x8D", "\x8F", "\x90", "\x9D"})
        EXPECT_EQ(text::decodeText("a\n"s + byte).fault, "is neither UTF-8 nor Windows-1252 (line 2)");
}

// Overlong forms and surrogates are no UTF-8, however they look.
TEST(TextEncoding, KnowsFalseUtf8) {
    for (const char* const bytes : {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC3"})
        EXPECT_EQ(text::findInvalidUtf8(bytes), 0U);
    EXPECT_EQ(text::decodeText("\xEF\xBB\xBF"
                               "a\n\xE9")
                  .fault,
              "begins as UTF-8, but is none in line 2");
}

TEST(TextEncoding, RefusesWhatIsNoText) {
    EXPECT_EQ(text::decodeText("PK\x03\x04...").fault, "is a workbook or another packed file, not text");
    EXPECT_NE(text::decodeText("i\0d\0,\0"s).fault.find("zero bytes"), std::string::npos);
}

// Long texts are looked through in blocks.
TEST(TextEncoding, FindsAStrangeByteWhereverItStands) {
    for (std::size_t place = 0; place < 300; ++place) {
        std::string bytes(300, 'x');
        bytes[place] = '\xE9';
        EXPECT_EQ(text::findInvalidUtf8(bytes), place);
        EXPECT_EQ(text::findInvalidUtf8(std::string(place, 'x') + "é" + std::string(100, 'x')),
                  std::string::npos);
    }
}
