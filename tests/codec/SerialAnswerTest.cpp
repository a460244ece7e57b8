#include "Printers.h"
#include "ReferenceTelegram.h"

#include <SerialTelegram.h>

#include <gtest/gtest.h>

using sbus::serial::breakMode;
using sbus::serial::checkReadAnswer;
using sbus::serial::checkWriteAnswer;
using sbus::serial::dataMode;
using sbus::serial::ReadAnswer;
using sbus::serial::WriteAnswer;

namespace {

constexpr int otherMode = 7;

} // namespace

TEST(SerialAnswer, AReadAnswerIsItsPayloadAndWhatFramesIt) {
    EXPECT_EQ(sbus::serial::readAnswerSize(2, dataMode), 6);
    EXPECT_EQ(sbus::serial::readAnswerSize(2, breakMode), 4);
    EXPECT_EQ(sbus::serial::readAnswerSize(2, otherMode), 4);
}

TEST(SerialAnswer, AWriteAnswerIsAnAcknowledgeTelegramOrAByteOrNothing) {
    EXPECT_EQ(sbus::serial::writeAnswerSize(dataMode), 6);
    EXPECT_EQ(sbus::serial::writeAnswerSize(breakMode), 1);
    EXPECT_EQ(sbus::serial::writeAnswerSize(otherMode), 0);
}

TEST(SerialAnswer, AGoodReadAnswerInDataMode) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 01 05 02")), dataMode), ReadAnswer::Good);
}

TEST(SerialAnswer, AGoodReadAnswerOutsideDataMode) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("05 02")), breakMode), ReadAnswer::Good);
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("05 02")), otherMode), ReadAnswer::Good);
}

TEST(SerialAnswer, AReadAnsweredByAnAcknowledgeTelegramIsNotAcknowledged) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 02 00 01")), dataMode), ReadAnswer::NotAcknowledged);
}

TEST(SerialAnswer, TheAcknowledgeAttributeAloneMakesAReadNotAcknowledged) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("00 02 00 01")), dataMode), ReadAnswer::NotAcknowledged);
}

TEST(SerialAnswer, AReadAnswerWithAWrongStartIsAFrameError) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B4 01 05 02")), dataMode), ReadAnswer::FrameError);
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 00 05 02")), dataMode), ReadAnswer::FrameError);
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 03 05 02")), dataMode), ReadAnswer::FrameError);
}

TEST(SerialAnswer, TheStartIsLookedAtBeforeTheChecksum) {
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("B4 01 05 02")), dataMode), ReadAnswer::FrameError);
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("B5 02 00 01")), dataMode), ReadAnswer::NotAcknowledged);
    EXPECT_EQ(checkWriteAnswer(withWrongChecksum(hex("B5 01 00 00")), dataMode), WriteAnswer::FrameError);
}

TEST(SerialAnswer, AReadAnswerWithAWrongChecksum) {
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("B5 01 05 02")), dataMode), ReadAnswer::ChecksumError);
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("05 02")), breakMode), ReadAnswer::ChecksumError);
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("05 02")), otherMode), ReadAnswer::ChecksumError);
}

TEST(SerialAnswer, TheChecksumOfADataModeAnswerCoversItsFirstTwoBytes) {
    const QByteArray withoutThem = withChecksum(hex("05 02"));
    EXPECT_EQ(checkReadAnswer(hex("B5 01") + withoutThem, dataMode), ReadAnswer::ChecksumError);
}

TEST(SerialAnswer, NothingInTheAnswerIsUnescaped) {
    const QByteArray answer = withChecksum(hex("B5 01 B5 B5 B5 00"));
    EXPECT_EQ(checkReadAnswer(answer, dataMode), ReadAnswer::Good);
    EXPECT_EQ(toHex(sbus::serial::withoutStart(answer, dataMode)), toHex(answer.mid(2)));
}

TEST(SerialAnswer, APositiveAcknowledgeTelegramIsGood) {
    EXPECT_EQ(checkWriteAnswer(hex("B5 02 00 00 23 F4"), dataMode), WriteAnswer::Good);
}

TEST(SerialAnswer, ANegativeAcknowledgeTelegramWithACorrectChecksumIsGood) {
    EXPECT_EQ(checkWriteAnswer(hex("B5 02 00 01 33 D5"), dataMode), WriteAnswer::Good);
    EXPECT_EQ(checkWriteAnswer(withChecksum(hex("B5 02 FF FF")), dataMode), WriteAnswer::Good);
}

TEST(SerialAnswer, AnAcknowledgeTelegramWithAWrongStartIsAFrameError) {
    EXPECT_EQ(checkWriteAnswer(withChecksum(hex("B5 01 00 00")), dataMode), WriteAnswer::FrameError);
    EXPECT_EQ(checkWriteAnswer(withChecksum(hex("06 02 00 00")), dataMode), WriteAnswer::FrameError);
}

TEST(SerialAnswer, AnAcknowledgeTelegramWithAWrongChecksum) {
    EXPECT_EQ(checkWriteAnswer(hex("B5 02 00 00 23 F5"), dataMode), WriteAnswer::ChecksumError);
}

TEST(SerialAnswer, InBreakModeOnlyTheAcknowledgeByteIsGood) {
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(checkWriteAnswer(QByteArray(1, static_cast<char>(byte)), breakMode),
                  byte == 0x06 ? WriteAnswer::Good : WriteAnswer::ControlError)
            << byte;
}

TEST(SerialAnswer, InAnyOtherModeAWriteIsAccepted) {
    EXPECT_EQ(checkWriteAnswer({}, otherMode), WriteAnswer::Good);
}

TEST(SerialAnswer, TheStartIsTakenOffInDataModeOnly) {
    EXPECT_EQ(toHex(sbus::serial::withoutStart(hex("B5 01 05 02 AA BB"), dataMode)), "05 02 AA BB");
    EXPECT_EQ(toHex(sbus::serial::withoutStart(hex("05 02 AA BB"), breakMode)), "05 02 AA BB");
    EXPECT_EQ(toHex(sbus::serial::withoutStart(hex("05 02 AA BB"), otherMode)), "05 02 AA BB");
}

// What nothing in a Break Mode answer tells apart.

TEST(SerialAnswer, InBreakModeTheEchoOfAReadPassesForAnAnswerOfFiveBytes) {
    SBusRequestItem item;
    item.command = 2;
    item.count = 39; // flags; of 33 to 40 the answer has five bytes and a checksum
    const QByteArray echo = sbus::serial::readFrame(item, 5, breakMode);
    EXPECT_EQ(echo.size(), sbus::serial::readAnswerSize(5, breakMode));
    EXPECT_EQ(checkReadAnswer(echo, breakMode), ReadAnswer::Good);
    EXPECT_EQ(checkReadAnswer(sbus::serial::readFrame(item, 5, dataMode), dataMode), ReadAnswer::FrameError);
}

TEST(SerialAnswer, InBreakModeAZeroThatIsLostInFrontAndOneThatComesBehindAreNotSeen) {
    const QByteArray answer = withChecksum(hex("00 00 00 05"));
    EXPECT_EQ(checkReadAnswer(answer.mid(1) + hex("00"), breakMode), ReadAnswer::Good);
    const QByteArray inDataMode = withChecksum(hex("B5 01 00 00 00 05"));
    EXPECT_EQ(checkReadAnswer(inDataMode.left(2) + inDataMode.mid(3) + hex("00"), dataMode),
              ReadAnswer::ChecksumError);
}

TEST(SerialAnswer, AnAnswerTooShortForAStartHasAWrongOneInDataMode) {
    for (const QByteArray& answer : {QByteArray(), hex("B5"), hex("02")}) {
        EXPECT_EQ(checkReadAnswer(answer, dataMode), ReadAnswer::FrameError);
        EXPECT_EQ(checkWriteAnswer(answer, dataMode), WriteAnswer::FrameError);
    }
}
