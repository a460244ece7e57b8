#include "Hex.h"

#include <Decoding.h>

#include <gtest/gtest.h>

#include <limits>

using Bits = QList<quint8>;
using Words = QList<qint32>;

// In each answer the last two bytes are the checksum; its value does not matter here.

TEST(Decoding, TenInputsComeLowestBitFirst) {
    EXPECT_EQ(sbus::decodeBits(hex("05 02  12 34"), 10), (Bits{1, 0, 1, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(Decoding, EachBitIsItsOwnElement) {
    for (quint32 set = 0; set < 24; ++set) {
        QByteArray answer(5, '\0');
        answer[static_cast<int>(set / 8)] = static_cast<char>(1 << set % 8);
        const Bits bits = sbus::decodeBits(answer, 24);
        ASSERT_EQ(bits.size(), 24);
        for (quint32 element = 0; element < 24; ++element)
            EXPECT_EQ(bits[static_cast<int>(element)], element == set ? 1 : 0) << set << ' ' << element;
    }
}

TEST(Decoding, SetBitsAreOneAndNothingElse) {
    EXPECT_EQ(sbus::decodeBits(hex("FF  00 00"), 8), (Bits{1, 1, 1, 1, 1, 1, 1, 1}));
}

TEST(Decoding, BitsBeyondTheLastElementAreLeftOut) {
    EXPECT_EQ(sbus::decodeBits(hex("FF FF  00 00"), 9), (Bits{1, 1, 1, 1, 1, 1, 1, 1, 1}));
}

TEST(Decoding, OneElementIsOneBit) {
    EXPECT_EQ(sbus::decodeBits(hex("FE  00 00"), 1), Bits{0});
    EXPECT_EQ(sbus::decodeBits(hex("01  00 00"), 1), Bits{1});
}

TEST(Decoding, ANegativeRegisterKeepsItsSign) {
    EXPECT_EQ(sbus::decodeWords(hex("FF FF FF FE  12 34"), 1), Words{-2});
}

TEST(Decoding, ARegisterIsBigEndian) {
    EXPECT_EQ(sbus::decodeWords(hex("00 00 01 00  12 34"), 1), Words{256});
    EXPECT_EQ(sbus::decodeWords(hex("12 34 56 78  00 00"), 1), Words{0x12345678});
}

TEST(Decoding, TheLimitsOfARegisterAreKept) {
    EXPECT_EQ(sbus::decodeWords(hex("80 00 00 00 7F FF FF FF  00 00"), 2),
              (Words{std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()}));
}

TEST(Decoding, WordsKeepTheirOrder) {
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00 01 00 00 00 02 00 00 00 03  00 00"), 3), (Words{1, 2, 3}));
}

TEST(Decoding, AShortBitAnswerGivesTheElementsItCovers) {
    EXPECT_EQ(sbus::decodeBits(hex("FF  FF FF"), 10), (Bits{1, 1, 1, 1, 1, 1, 1, 1}));
}

TEST(Decoding, AShortWordAnswerGivesTheElementsItCovers) {
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00 01 00 00 00 02  00 00"), 3), (Words{1, 2}));
}

TEST(Decoding, HalfAWordIsNoValue) {
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00 01 00 00  00 00"), 2), Words{1});
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00  00 00"), 1), Words{});
}

TEST(Decoding, ChecksumBytesAreNeverTakenForData) {
    EXPECT_EQ(sbus::decodeBits(hex("FF FF"), 8), Bits{});
    EXPECT_EQ(sbus::decodeWords(hex("00 01  00 02"), 1), Words{});
}

TEST(Decoding, AnAnswerShorterThanAChecksumGivesNothing) {
    EXPECT_EQ(sbus::decodeBits({}, 8), Bits{});
    EXPECT_EQ(sbus::decodeBits(hex("FF"), 8), Bits{});
    EXPECT_EQ(sbus::decodeWords({}, 1), Words{});
    EXPECT_EQ(sbus::decodeWords(hex("FF"), 1), Words{});
}

TEST(Decoding, AnAbsurdNumberOfElementsGivesOnlyWhatIsThere) {
    EXPECT_EQ(sbus::decodeBits(hex("01  00 00"), 0xFFFFFFFFu).size(), 8);
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00 01  00 00"), 0xFFFFFFFFu), Words{1});
}

TEST(Decoding, ALongerAnswerGivesNoMoreThanWasAsked) {
    EXPECT_EQ(sbus::decodeBits(hex("FF FF FF  00 00"), 3), (Bits{1, 1, 1}));
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00 01 00 00 00 02  00 00"), 1), Words{1});
}

TEST(Decoding, MoreElementsThanATelegramHoldsAreAllDecoded) {
    EXPECT_EQ(sbus::decodeWords(hex("00 00 00 07").repeated(300) + hex("00 00"), 300).count(7), 300);
    EXPECT_EQ(sbus::decodeBits(QByteArray(40, '\xFF') + hex("00 00"), 300).count(1), 300);
}

TEST(Decoding, EveryLengthOfATelegramIsDecodedAsOneValueAfterTheOtherWouldBe) {
    QByteArray payload;
    for (int length = 0; length <= 520; ++length) {
        const QByteArray answer = payload + hex("FF FF");
        Bits bits;
        for (int i = 0; i < length * 8; ++i)
            bits.append(static_cast<quint8>(payload.at(i / 8)) >> i % 8 & 1);
        Words words;
        for (int i = 0; i + 4 <= length; i += 4)
            words.append(static_cast<qint32>(payload.mid(i, 4).toHex().toUInt(nullptr, 16)));
        ASSERT_EQ(sbus::decodeBits(answer, 5'000), bits) << length;
        ASSERT_EQ(sbus::decodeWords(answer, 5'000), words) << length;
        payload.append(static_cast<char>(0xB5 + 37 * length));
    }
}
