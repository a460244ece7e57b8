#include "DecimalText.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

// What isDecimalText does, the plain way.
bool equalsDecimalText(const QString& text, quint32 number) {
    return text == QString::number(number);
}

} // namespace

TEST(DecimalText, IsTheNumberWithoutSignBlanksOrLeadingZeros) {
    EXPECT_TRUE(sbus::isDecimalText(QStringLiteral("0"), 0));
    EXPECT_TRUE(sbus::isDecimalText(QStringLiteral("10"), 10));
    EXPECT_TRUE(sbus::isDecimalText(QStringLiteral("4294967295"), 4'294'967'295u));
    for (const char* text : {"", "+7", " 7", "7 ", "07", "007", "17", "71", "8", "7.0", "x"})
        EXPECT_FALSE(sbus::isDecimalText(QString::fromLatin1(text), 7)) << text;
}

TEST(DecimalText, IsNeverNegativeNorTooLong) {
    EXPECT_FALSE(sbus::isDecimalText(QStringLiteral("-1"), 4'294'967'295u));
    EXPECT_FALSE(sbus::isDecimalText(QStringLiteral("4294967296"), 0));
    EXPECT_FALSE(sbus::isDecimalText(QStringLiteral("00"), 0));
}

TEST(DecimalText, HasAsciiDigits) {
    EXPECT_FALSE(sbus::isDecimalText(QString(QChar(0x0667)), 7)) << "an Arabic-Indic digit";
    EXPECT_FALSE(sbus::isDecimalText(QString(QChar(0xFF17)), 7)) << "a full-width digit";
}

TEST(DecimalText, AgreesWithTheTextOfEveryNumberThatAnAddressCanName) {
    for (quint32 number = 0; number < 100'000; ++number) {
        const QString text = QString::number(number);
        ASSERT_TRUE(sbus::isDecimalText(text, number)) << number;
        for (const quint32 other : {number + 1, number - 1, number * 10, number / 10, number + 10'000})
            ASSERT_EQ(sbus::isDecimalText(text, other), equalsDecimalText(text, other))
                << number << ' ' << other;
    }
}
