#include "ControlCharacters.h"

#include <gtest/gtest.h>

using namespace text;
using namespace std::string_literals;

TEST(ControlCharacters, AreC0AndDeleteAndC1) {
    for (const char* const one : {"\x01", "\x1F", "\x7F", "\xC2\x80", "\xC2\x9F"})
        EXPECT_EQ(findControl("ab"s + one), 2U) << printable(one);
    EXPECT_EQ(findControl("\0"s), 0U);
    EXPECT_EQ(findControl("Br\xC3\xBC"
                          "cke \xC2\xA0 \xE2\x82\xAC 100 %"),
              std::string::npos);
}

TEST(ControlCharacters, MayBeLineEndsAndTabsInAFile) {
    EXPECT_EQ(findControlInLines("a\tb\r\nc\n"), std::string::npos);
    EXPECT_EQ(findControl("a\tb"), 1U);
}

// Long texts are looked through in blocks.
TEST(ControlCharacters, AreFoundWhereverTheyStandInALongText) {
    for (std::size_t place = 0; place < 300; ++place) {
        std::string text(300, 'x');
        text[place] = '\x1B';
        EXPECT_EQ(findControlInLines(text), place);
        text = std::string(place, 'x') + "\xC3\xBC\xC2\x9B" + std::string(100, 'x');
        EXPECT_EQ(findControlInLines(text), place + 2);
    }
}

TEST(ControlCharacters, HaveNames) {
    EXPECT_EQ(controlName("a\x1B", 1), "U+001B");
    EXPECT_EQ(controlName("\xC2\x9B", 0), "U+009B");
}

TEST(ControlCharacters, AreEscapedForATerminal) {
    EXPECT_EQ(printable("a\x1B[2Jb\nc\x7F \xC2\x9B \xC3\xBC"), "a\\x1B[2Jb\\x0Ac\\x7F \\x9B \xC3\xBC");
    EXPECT_EQ(printable("caf\xE9"), "caf\\xE9");
    EXPECT_EQ(printableLines("a\x07\nb\n"), "a\\x07\nb\n");
}

TEST(ControlCharacters, AreEscapedInJsonAsJsonDoes) {
    EXPECT_EQ(printableJson("{\"a\":\"\xC2\x9B\x7F\xC3\xBC\"}"), "{\"a\":\"\\u009b\\u007f\xC3\xBC\"}");
    EXPECT_EQ(printableJson("\xE9"), "\\ufffd");
}
