#include "Printers.h"
#include "ReferenceTelegram.h"

#include <Telegram.h>

#include <gtest/gtest.h>

TEST(Checksum, GivesTheCheckValueOfItsParameterSet) {
    EXPECT_EQ(toHex(sbus::crc16("123456789")), "31 C3");
}

TEST(Checksum, IsTwoBytesHighByteFirst) {
    EXPECT_EQ(toHex(sbus::crc16(hex("01 02 08 00 64"))), "C2 BA");
    EXPECT_EQ(toHex(sbus::crc16(hex("FF"))), "1E F0");
}

TEST(Checksum, StartsFromZero) {
    EXPECT_EQ(toHex(sbus::crc16({})), "00 00");
    EXPECT_EQ(toHex(sbus::crc16(hex("00"))), "00 00");
}

TEST(Checksum, AgreesWithAnotherWayOfWorkingItOutForEveryByteValueAtEveryPlace) {
    for (int value = 0; value < 256; ++value)
        for (int place = 0; place < 4; ++place) {
            QByteArray bytes = hex("B5 01 7F 80");
            bytes[place] = static_cast<char>(value);
            ASSERT_EQ(toHex(sbus::crc16(bytes)), toHex(bigEndian16(referenceChecksum(bytes))))
                << toHex(bytes);
        }
}

TEST(Checksum, AgreesWithAnotherWayOfWorkingItOutAfterEveryTwoBytes) {
    for (int value = 0; value < 0x10000; ++value) {
        const QByteArray bytes = bigEndian16(static_cast<quint16>(value)) + hex("00");
        ASSERT_EQ(toHex(sbus::crc16(bytes)), toHex(bigEndian16(referenceChecksum(bytes)))) << toHex(bytes);
    }
}

TEST(Checksum, AgreesWithAnotherWayOfWorkingItOutForEveryLengthOfATelegram) {
    QByteArray bytes;
    for (int length = 0; length <= 600; ++length) {
        ASSERT_EQ(toHex(sbus::crc16(bytes)), toHex(bigEndian16(referenceChecksum(bytes)))) << length;
        bytes.append(static_cast<char>(0xB5 + 37 * length));
    }
}

TEST(Checksum, IsAppendedBehindAllThatTheFrameHolds) {
    QByteArray frame = hex("B5 00 01 02 08 00 64");
    sbus::appendChecksum(frame);
    EXPECT_EQ(toHex(frame), "B5 00 01 02 08 00 64 49 69");
}

TEST(Checksum, IsComparedHighByteFirstWithTheLastTwoBytes) {
    EXPECT_TRUE(sbus::hasValidChecksum(hex("01 02 08 00 64 C2 BA")));
    EXPECT_FALSE(sbus::hasValidChecksum(hex("01 02 08 00 64 BA C2")));
}

TEST(Checksum, EveryTurnedBitIsNoticed) {
    const QByteArray good = hex("01 02 08 00 64 C2 BA");
    for (int bit = 0; bit < good.size() * 8; ++bit) {
        QByteArray damaged = good;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
        EXPECT_FALSE(sbus::hasValidChecksum(damaged)) << toHex(damaged);
    }
}

TEST(Checksum, FewerThanTwoBytesHaveNone) {
    EXPECT_FALSE(sbus::hasValidChecksum({}));
    EXPECT_FALSE(sbus::hasValidChecksum(hex("00")));
}

TEST(Checksum, TwoBytesAloneAreTheChecksumOfNothing) {
    EXPECT_TRUE(sbus::hasValidChecksum(hex("00 00")));
    EXPECT_FALSE(sbus::hasValidChecksum(hex("00 01")));
}
