#include <HexLine.h>

#include <QString>

#include <gtest/gtest.h>

namespace {

// The same, digit by digit.
QString referenceLine(const QByteArray& bytes) {
    QString line;
    for (const char byte : bytes)
        line += QStringLiteral("%1 ").arg(static_cast<quint8>(byte), 2, 16, QLatin1Char('0')).toUpper();
    return line;
}

QString lineOf(const QByteArray& bytes) {
    QString line(bytes.size() * sbus::hexCharactersOfByte + 1, QLatin1Char('?'));
    sbus::writeHexLine(line.data(), bytes.constData(), bytes.size());
    line.chop(1);
    return line;
}

} // namespace

TEST(HexLine, AgreesWithTheSimpleWayForEveryByte) {
    for (int value = 0; value < 256; ++value) {
        const QByteArray byte(1, static_cast<char>(value));
        ASSERT_EQ(lineOf(byte), referenceLine(byte)) << value;
    }
}

TEST(HexLine, AgreesWithTheSimpleWayForEveryLength) {
    QByteArray bytes;
    for (int length = 0; length <= 40; ++length) {
        ASSERT_EQ(lineOf(bytes), referenceLine(bytes)) << length;
        bytes.append(static_cast<char>(0xB5 + 37 * length));
    }
}

TEST(HexLine, ChangesNoMoreThanOneCharacterBehindTheLine) {
    for (int length = 0; length <= 20; ++length) {
        const int size = length * sbus::hexCharactersOfByte;
        QString room(size + 10, QLatin1Char('?'));
        sbus::writeHexLine(room.data(), QByteArray(length, '\x5A').constData(), length);
        EXPECT_EQ(room.mid(size + 1), QString(9, QLatin1Char('?'))) << length;
    }
}
