#include "Printers.h"

#include <HexDump.h>

#include <gtest/gtest.h>

namespace {

QStringList dumpOf(const char* bytes, int length) {
    QStringList lines;
    sbus::forEachHexLine(bytes, length, [&](const QString& line) { lines << line; });
    return lines;
}

QStringList dumpOf(const QByteArray& bytes) {
    return dumpOf(bytes.constData(), bytes.size());
}

const QString eighteenZeros = QString("00 ").repeated(18);

} // namespace

TEST(HexDump, EachByteIsTwoUpperCaseDigitsAndABlank) {
    EXPECT_EQ(dumpOf(hex("B5 00 0A")), QStringList{"B5 00 0A "});
}

TEST(HexDump, NoBytesGiveOneEmptyLine) {
    EXPECT_EQ(dumpOf({}), QStringList{""});
    EXPECT_EQ(dumpOf(nullptr, 0), QStringList{""});
}

TEST(HexDump, EighteenBytesFitOnOneLine) {
    EXPECT_EQ(dumpOf(QByteArray(18, '\0')), QStringList{eighteenZeros});
}

TEST(HexDump, TheNineteenthByteBeginsTheSecondLine) {
    EXPECT_EQ(dumpOf(QByteArray(18, '\0') + hex("FE")), (QStringList{eighteenZeros, "FE "}));
}

TEST(HexDump, ThirtySixBytesAreTwoFullLines) {
    EXPECT_EQ(dumpOf(QByteArray(36, '\0')), (QStringList{eighteenZeros, eighteenZeros}));
}

TEST(HexDump, EveryByteHasItsOwnTextAtEveryPlaceOfALine) {
    for (int byte = 0; byte < 256; ++byte) {
        const QString text = QString("%1 ").arg(byte, 2, 16, QChar('0')).toUpper();
        for (int length = 1; length <= 18; ++length)
            ASSERT_EQ(dumpOf(QByteArray(length, static_cast<char>(byte))),
                      QStringList{text.repeated(length)});
    }
}

TEST(HexDump, BytesAboveHexSevenFAreNotSignExtended) {
    EXPECT_EQ(dumpOf(hex("80 FF")), QStringList{"80 FF "});
}

TEST(HexDump, EachLineEndsWithTheZeroThatEndsAText) {
    const QByteArray bytes(19, '\x5A');
    sbus::forEachHexLine(bytes.constData(), bytes.size(), [](const QString& line) {
        EXPECT_EQ(line.constData()[line.size()], QChar(0)) << line.size();
    });
}
