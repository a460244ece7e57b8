#include "PointAddress.h"

#include <gtest/gtest.h>

namespace {

std::optional<sbus::PointAddress> match(const char* text) {
    return sbus::matchAddress(QString::fromUtf8(text));
}

std::optional<sbus::PointAddress> matchIgnoringBlanks(const char* text) {
    return sbus::matchAddressIgnoringBlanks(QString::fromUtf8(text));
}

} // namespace

TEST(PointAddress, SplitsIntoMediaAndNumber) {
    const auto address = match("R200");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->media, QStringLiteral("R"));
    EXPECT_EQ(address->numberText, QStringLiteral("200"));
    EXPECT_EQ(address->number(), 200);
    EXPECT_EQ(address->key(), QStringLiteral("R200"));
}

TEST(PointAddress, TakesFiveDigitsAndNoSixth) {
    const auto address = match("I99999");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->number(), 99999);
    EXPECT_FALSE(match("I100000"));
}

TEST(PointAddress, TakesOneDigit) {
    const auto address = match("T0");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->number(), 0);
}

TEST(PointAddress, KeepsLeadingZerosInTextAndKey) {
    const auto address = match("R007");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->numberText, QStringLiteral("007"));
    EXPECT_EQ(address->key(), QStringLiteral("R007"));
    EXPECT_EQ(address->number(), 7);
}

TEST(PointAddress, TakesAnyUpperCaseLetter) {
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const auto address = sbus::matchAddress(QLatin1Char(letter) + QStringLiteral("12"));
        ASSERT_TRUE(address) << letter;
        EXPECT_EQ(address->media, QString(QLatin1Char(letter)));
        EXPECT_EQ(address->number(), 12);
    }
}

TEST(PointAddress, DoesNotTakeALowerCaseLetter) {
    EXPECT_FALSE(match("r200"));
}

TEST(PointAddress, DoesNotTakeTwoLetters) {
    EXPECT_FALSE(match("RR200"));
}

TEST(PointAddress, DoesNotTakeASign) {
    EXPECT_FALSE(match("R-1"));
    EXPECT_FALSE(match("R+1"));
}

TEST(PointAddress, DoesNotTakeAPartOfTheText) {
    for (const char* text : {"X12.3", "R200x", "xR200", "R200 ", "R200\n", "\nR200", "R2 00", "R200,R201"})
        EXPECT_FALSE(match(text)) << text;
}

TEST(PointAddress, DoesNotTakeAnIncompleteText) {
    for (const char* text : {"", "R", "200", " "})
        EXPECT_FALSE(match(text)) << text;
}

TEST(PointAddress, DoesNotTakeALetterBeyondAscii) {
    EXPECT_FALSE(match("Ä200"));
    EXPECT_FALSE(match("Р200")); // a Cyrillic letter that looks like P
}

TEST(PointAddress, TakesDigitsOfAnyScriptAndReadsOthersThanAsciiAsZero) {
    for (const char* text : {"R٣", "R٣٤", "R１２", "R७", "R1٣"}) {
        const auto address = match(text);
        ASSERT_TRUE(address) << text;
        EXPECT_EQ(address->media, QStringLiteral("R")) << text;
        EXPECT_EQ(address->key(), QString::fromUtf8(text));
        EXPECT_EQ(address->number(), 0) << text;
    }
    EXPECT_FALSE(match("R٣٣٣٣٣٣")) << "six digits";
    EXPECT_FALSE(match("R²")) << "a superscript is no digit";
}

TEST(PointAddress, NumberMayBeNegativeInANumberField) {
    EXPECT_EQ((sbus::PointAddress{QStringLiteral("R"), QStringLiteral("-5")}.number()), -5);
}

TEST(PointAddress, DoesNotTakeALeadingBlankAsItStands) {
    EXPECT_FALSE(match(" R200"));
    EXPECT_FALSE(match("R 200"));
}

TEST(PointAddress, TakesBlanksAnywhereWhereTheyAreIgnored) {
    for (const char* text : {"R 200", " R200", "R200 ", "  R 2 0 0 "}) {
        const auto address = matchIgnoringBlanks(text);
        ASSERT_TRUE(address) << text;
        EXPECT_EQ(address->key(), QStringLiteral("R200")) << text;
    }
}

TEST(PointAddress, IgnoresBlanksButNoOtherWhiteSpace) {
    for (const char* text : {"R\t200", "R200\n", "\rR200", "R\u00A0200"})
        EXPECT_FALSE(matchIgnoringBlanks(text)) << text;
}

TEST(PointAddress, IsNotMadeOfBlanksAlone) {
    EXPECT_FALSE(matchIgnoringBlanks(""));
    EXPECT_FALSE(matchIgnoringBlanks("   "));
}

TEST(PointAddress, NumberOfATextThatIsNoNumberIsZero) {
    for (const char* text : {"", "abc", "12x", "1.5", "0x10"})
        EXPECT_EQ((sbus::PointAddress{QStringLiteral("R"), QString::fromLatin1(text)}.number()), 0) << text;
}
