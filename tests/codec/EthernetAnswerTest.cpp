#include "Printers.h"
#include "ReferenceTelegram.h"

#include <EthernetTelegram.h>

#include <gtest/gtest.h>

#include <limits>

using sbus::ethernet::announcedLength;
using sbus::ethernet::AnswerCheck;
using sbus::ethernet::checkReadAnswer;
using sbus::ethernet::checkWriteAnswer;
using sbus::ethernet::lengthSize;
using Result = AnswerCheck::Result;

namespace {

constexpr quint16 sequence = 0x1234;
constexpr quint8 response = 1;
constexpr quint8 acknowledge = 2;

QByteArray damaged(QByteArray telegram) {
    telegram[telegram.size() - 1] = static_cast<char>(telegram[telegram.size() - 1] ^ 1);
    return telegram;
}

} // namespace

TEST(EthernetAnswer, ADataResponseWithTheExpectedSequenceIsAGoodReadAnswer) {
    const QByteArray telegram = ethernetTelegram(sequence, response, hex("00 00 00 07"));
    EXPECT_EQ(toHex(telegram), "00 00 00 0F 01 00 12 34 01 00 00 00 07 19 91");
    EXPECT_EQ(checkReadAnswer(telegram, sequence).result, Result::Good);
}

TEST(EthernetAnswer, AReadAnswerWithAnotherSequenceIsInvalid) {
    const QByteArray late = ethernetTelegram(sequence - 1, response, hex("00 00 00 07"));
    EXPECT_EQ(checkReadAnswer(late, sequence).result, Result::InvalidSequence);
}

TEST(EthernetAnswer, TheSequenceIsLookedAtBeforeAnythingElse) {
    const QByteArray read = damaged(ethernetTelegram(sequence + 1, 9, hex("00 00 00 07")));
    EXPECT_EQ(checkReadAnswer(read, sequence).result, Result::InvalidSequence);
    EXPECT_EQ(checkWriteAnswer(read, sequence).result, Result::InvalidSequence);
}

TEST(EthernetAnswer, AReadAnswerWithAWrongChecksum) {
    const QByteArray telegram = damaged(ethernetTelegram(sequence, response, hex("00 00 00 07")));
    EXPECT_EQ(checkReadAnswer(telegram, sequence).result, Result::ChecksumError);
}

TEST(EthernetAnswer, AReadRefusedGivesTheAcknowledgeCode) {
    const AnswerCheck check =
        checkReadAnswer(ethernetTelegram(sequence, acknowledge, hex("01 02")), sequence);
    EXPECT_EQ(check.result, Result::AcknowledgeError);
    EXPECT_EQ(check.value, 0x0102u);
}

TEST(EthernetAnswer, AReadAnsweredByAPositiveAcknowledgeGivesTheAttribute) {
    const AnswerCheck check =
        checkReadAnswer(ethernetTelegram(sequence, acknowledge, hex("00 00")), sequence);
    EXPECT_EQ(check.result, Result::AcknowledgeError);
    EXPECT_EQ(check.value, 2u);
}

TEST(EthernetAnswer, AReadAnsweredUnderAnyOtherAttributeGivesTheAttribute) {
    for (const int attribute : {0, 3, 128, 255}) {
        const QByteArray telegram =
            ethernetTelegram(sequence, static_cast<quint8>(attribute), hex("00 00 00 07"));
        const AnswerCheck check = checkReadAnswer(telegram, sequence);
        EXPECT_EQ(check.result, Result::AcknowledgeError) << attribute;
        EXPECT_EQ(check.value, static_cast<unsigned>(attribute));
    }
}

TEST(EthernetAnswer, TheChecksumOfARefusedReadIsNotLookedAt) {
    const QByteArray telegram = damaged(ethernetTelegram(sequence, acknowledge, hex("00 03")));
    const AnswerCheck check = checkReadAnswer(telegram, sequence);
    EXPECT_EQ(check.result, Result::AcknowledgeError);
    EXPECT_EQ(check.value, 3u);
}

TEST(EthernetAnswer, APositiveAcknowledgeIsAGoodWriteAnswer) {
    EXPECT_EQ(checkWriteAnswer(ethernetTelegram(sequence, acknowledge, hex("00 00")), sequence).result,
              Result::Good);
}

TEST(EthernetAnswer, AWriteAnswerWithAnotherSequenceIsInvalid) {
    const QByteArray late = ethernetTelegram(sequence - 1, acknowledge, hex("00 00"));
    EXPECT_EQ(checkWriteAnswer(late, sequence).result, Result::InvalidSequence);
}

TEST(EthernetAnswer, AWriteAnsweredUnderAnyOtherAttributeGivesTheAttribute) {
    for (const int attribute : {0, 1, 3, 255}) {
        const QByteArray telegram = ethernetTelegram(sequence, static_cast<quint8>(attribute), hex("00 00"));
        const AnswerCheck check = checkWriteAnswer(telegram, sequence);
        EXPECT_EQ(check.result, Result::AcknowledgeError) << attribute;
        EXPECT_EQ(check.value, static_cast<unsigned>(attribute));
    }
}

TEST(EthernetAnswer, ARefusedWriteGivesTheAcknowledgeCode) {
    const AnswerCheck check =
        checkWriteAnswer(ethernetTelegram(sequence, acknowledge, hex("FF FE")), sequence);
    EXPECT_EQ(check.result, Result::AcknowledgeError);
    EXPECT_EQ(check.value, 0xFFFEu);
}

TEST(EthernetAnswer, ARefusedWriteIsToldBeforeItsWrongChecksum) {
    const QByteArray telegram = damaged(ethernetTelegram(sequence, acknowledge, hex("00 05")));
    const AnswerCheck check = checkWriteAnswer(telegram, sequence);
    EXPECT_EQ(check.result, Result::AcknowledgeError);
    EXPECT_EQ(check.value, 5u);
}

TEST(EthernetAnswer, AWriteAnswerWithAWrongChecksum) {
    const QByteArray telegram = damaged(ethernetTelegram(sequence, acknowledge, hex("00 00")));
    EXPECT_EQ(checkWriteAnswer(telegram, sequence).result, Result::ChecksumError);
}

// The acknowledge code is in the two bytes before the checksum, wherever the telegram ends.

TEST(EthernetAnswer, TheCodeOfALongerAcknowledgeStandsBeforeItsChecksum) {
    const QByteArray telegram = ethernetTelegram(sequence, acknowledge, hex("00 00 00 01 02 03"));
    EXPECT_EQ(checkReadAnswer(telegram, sequence).value, 0x0203u);
    EXPECT_EQ(checkWriteAnswer(telegram, sequence).value, 0x0203u);
    const QByteArray positive = ethernetTelegram(sequence, acknowledge, hex("00 05 00 00"));
    EXPECT_EQ(checkReadAnswer(positive, sequence).value, 2u);
    EXPECT_EQ(checkWriteAnswer(positive, sequence).result, Result::Good);
}

TEST(EthernetAnswer, TheCodeOfAShorterAcknowledgeReachesIntoItsHeader) {
    struct Row {
        const char* behindHeader; // before the checksum
        unsigned code;
    };
    for (const Row& row : {Row{"05", 0x0205}, Row{"", 0x3402}}) {
        const QByteArray telegram = ethernetTelegram(sequence, acknowledge, hex(row.behindHeader));
        for (const AnswerCheck& check :
             {checkReadAnswer(telegram, sequence), checkWriteAnswer(telegram, sequence)}) {
            EXPECT_EQ(check.result, Result::AcknowledgeError) << row.behindHeader;
            EXPECT_EQ(check.value, row.code) << row.behindHeader;
        }
    }
}

TEST(EthernetAnswer, AnAcknowledgeThatEndsWithItsAttributeHasItsCodeBeforeTheLastTwoBytes) {
    // Ten bytes: the code is the sequence number. Nine: it is protocol type and the number's high byte.
    const QByteArray header = ethernetBytes(sequence, acknowledge, {}, 9);
    EXPECT_EQ(checkWriteAnswer(header + hex("77"), sequence).value, 0x1234u);
    EXPECT_EQ(checkReadAnswer(header + hex("77"), sequence).value, 0x1234u);
    EXPECT_EQ(checkWriteAnswer(header, sequence).value, 0x0012u);
    EXPECT_EQ(checkReadAnswer(header, sequence).value, 0x0012u);
}

TEST(EthernetAnswer, WhatStandsBehindTheEndOfAShortTelegramIsNotReadAsItsHeader) {
    const QByteArray whole = ethernetTelegram(sequence, acknowledge, hex("00 07"));
    for (int length = 0; length < 9; ++length) {
        // The bytes behind its end are those of the whole telegram.
        const QByteArray part = QByteArray::fromRawData(whole.constData(), length);
        const quint16 sequenceInPart = length < 8 ? 0 : sequence;
        for (const AnswerCheck& check :
             {checkReadAnswer(part, sequenceInPart), checkWriteAnswer(part, sequenceInPart)}) {
            EXPECT_EQ(check.result, Result::AcknowledgeError) << length;
            EXPECT_EQ(check.value, 0u) << length;
        }
    }
}

TEST(EthernetAnswer, VersionAndProtocolTypeAreNotLookedAt) {
    QByteArray bytes = ethernetBytes(sequence, response, hex("00 00 00 07"), 15);
    bytes[4] = 9;
    bytes[5] = 9;
    EXPECT_EQ(checkReadAnswer(withChecksum(bytes), sequence).result, Result::Good);
}

TEST(EthernetAnswer, ATelegramOfAnyLengthMayBeChecked) {
    const QByteArray whole = ethernetTelegram(0, response, hex("00 00 00 07"));
    for (int length = 0; length < whole.size(); ++length) {
        // A copy of its own, so that a sanitizer sees every byte read behind its end.
        const QByteArray part(whole.constData(), length);
        EXPECT_NE(checkReadAnswer(part, 0).result, Result::Good) << length;
        EXPECT_NE(checkWriteAnswer(part, 0).result, Result::Good) << length;
    }
}

TEST(EthernetAnswer, TheAnnouncedLengthIsSignedAndBigEndian) {
    EXPECT_EQ(announcedLength(hex("00 00 00 10").constData()), 16);
    EXPECT_EQ(announcedLength(hex("01 02 03 04 05").constData()), 0x01020304);
    EXPECT_EQ(announcedLength(hex("FF FF FF FF").constData()), -1);
    EXPECT_EQ(announcedLength(hex("80 00 00 00").constData()), std::numeric_limits<qint32>::min());
}

TEST(EthernetAnswer, TheLengthFieldIsNeededForTheAnnouncedLengthAndNothingElse) {
    // A copy of its own, so that a sanitizer sees every byte read behind its end.
    const QByteArray lengthField = ethernetTelegram(sequence, response, hex("00 00 00 07")).left(lengthSize);
    EXPECT_EQ(announcedLength(lengthField.constData()), 15);
}

TEST(EthernetAnswer, OnlyAnAcknowledgeErrorHasAValue) {
    const QByteArray good = ethernetTelegram(sequence, response, hex("00 00 00 07"));
    EXPECT_EQ(checkReadAnswer(good, sequence).value, 0u);
    EXPECT_EQ(checkReadAnswer(good, sequence + 1).value, 0u);
    EXPECT_EQ(checkReadAnswer(damaged(good), sequence).value, 0u);
}

TEST(EthernetAnswer, WithoutItsHeaderAnAnswerIsPayloadAndChecksum) {
    const QByteArray telegram = ethernetTelegram(sequence, response, hex("00 00 00 07"));
    EXPECT_EQ(toHex(sbus::ethernet::withoutHeader(telegram)), toHex(hex("00 00 00 07") + telegram.right(2)));
}

TEST(EthernetAnswer, WithoutItsHeaderAShortAnswerIsNothing) {
    for (int length = 0; length <= 9; ++length)
        EXPECT_TRUE(sbus::ethernet::withoutHeader(QByteArray(length, '\1')).isEmpty()) << length;
}
