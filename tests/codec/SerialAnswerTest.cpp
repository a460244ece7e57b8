#include "Printers.h"
#include "ReferenceTelegram.h"

#include <SerialTelegram.h>

#include <gtest/gtest.h>

using sbus::serial::checkReadAnswer;
using sbus::serial::checkWriteAnswer;
using sbus::serial::Mode;
using sbus::serial::ReadAnswer;
using sbus::serial::WriteAnswer;

TEST(SerialAnswer, AReadAnswerIsItsPayloadAndWhatFramesIt) {
    EXPECT_EQ(sbus::serial::readAnswerSize(2, Mode::Data), 6);
    EXPECT_EQ(sbus::serial::readAnswerSize(2, Mode::Break), 4);
    EXPECT_EQ(sbus::serial::readAnswerSize(2, Mode::Other), 4);
}

TEST(SerialAnswer, AWriteAnswerIsAnAcknowledgeTelegramOrAByteOrNothing) {
    EXPECT_EQ(sbus::serial::writeAnswerSize(Mode::Data), 6);
    EXPECT_EQ(sbus::serial::writeAnswerSize(Mode::Break), 1);
    EXPECT_EQ(sbus::serial::writeAnswerSize(Mode::Other), 0);
}

TEST(SerialAnswer, AGoodReadAnswerInDataMode) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 01 05 02")), Mode::Data), ReadAnswer::Good);
}

TEST(SerialAnswer, AGoodReadAnswerOutsideDataMode) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("05 02")), Mode::Break), ReadAnswer::Good);
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("05 02")), Mode::Other), ReadAnswer::Good);
}

TEST(SerialAnswer, AReadAnsweredByAnAcknowledgeTelegramIsNotAcknowledged) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 02 00 01")), Mode::Data), ReadAnswer::NotAcknowledged);
}

TEST(SerialAnswer, TheAcknowledgeAttributeAloneMakesAReadNotAcknowledged) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("00 02 00 01")), Mode::Data), ReadAnswer::NotAcknowledged);
}

TEST(SerialAnswer, AReadAnswerWithAWrongStartIsAFrameError) {
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B4 01 05 02")), Mode::Data), ReadAnswer::FrameError);
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 00 05 02")), Mode::Data), ReadAnswer::FrameError);
    EXPECT_EQ(checkReadAnswer(withChecksum(hex("B5 03 05 02")), Mode::Data), ReadAnswer::FrameError);
}

TEST(SerialAnswer, TheStartIsLookedAtBeforeTheChecksum) {
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("B4 01 05 02")), Mode::Data), ReadAnswer::FrameError);
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("B5 02 00 01")), Mode::Data),
              ReadAnswer::NotAcknowledged);
    EXPECT_EQ(checkWriteAnswer(withWrongChecksum(hex("B5 01 00 00")), Mode::Data), WriteAnswer::FrameError);
}

TEST(SerialAnswer, AReadAnswerWithAWrongChecksum) {
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("B5 01 05 02")), Mode::Data), ReadAnswer::ChecksumError);
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("05 02")), Mode::Break), ReadAnswer::ChecksumError);
    EXPECT_EQ(checkReadAnswer(withWrongChecksum(hex("05 02")), Mode::Other), ReadAnswer::ChecksumError);
}

TEST(SerialAnswer, TheChecksumOfADataModeAnswerCoversItsFirstTwoBytes) {
    const QByteArray withoutThem = withChecksum(hex("05 02"));
    EXPECT_EQ(checkReadAnswer(hex("B5 01") + withoutThem, Mode::Data), ReadAnswer::ChecksumError);
}

TEST(SerialAnswer, NothingInTheAnswerIsUnescaped) {
    const QByteArray answer = withChecksum(hex("B5 01 B5 B5 B5 00"));
    EXPECT_EQ(checkReadAnswer(answer, Mode::Data), ReadAnswer::Good);
    EXPECT_EQ(toHex(sbus::serial::withoutStart(answer, Mode::Data)), toHex(answer.mid(2)));
}

TEST(SerialAnswer, APositiveAcknowledgeTelegramIsGood) {
    EXPECT_EQ(checkWriteAnswer(hex("B5 02 00 00 23 F4"), Mode::Data), WriteAnswer::Good);
}

TEST(SerialAnswer, ANegativeAcknowledgeTelegramWithACorrectChecksumIsGood) {
    EXPECT_EQ(checkWriteAnswer(hex("B5 02 00 01 33 D5"), Mode::Data), WriteAnswer::Good);
    EXPECT_EQ(checkWriteAnswer(withChecksum(hex("B5 02 FF FF")), Mode::Data), WriteAnswer::Good);
}

TEST(SerialAnswer, AnAcknowledgeTelegramWithAWrongStartIsAFrameError) {
    EXPECT_EQ(checkWriteAnswer(withChecksum(hex("B5 01 00 00")), Mode::Data), WriteAnswer::FrameError);
    EXPECT_EQ(checkWriteAnswer(withChecksum(hex("06 02 00 00")), Mode::Data), WriteAnswer::FrameError);
}

TEST(SerialAnswer, AnAcknowledgeTelegramWithAWrongChecksum) {
    EXPECT_EQ(checkWriteAnswer(hex("B5 02 00 00 23 F5"), Mode::Data), WriteAnswer::ChecksumError);
}

TEST(SerialAnswer, InBreakModeOnlyTheAcknowledgeByteIsGood) {
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(checkWriteAnswer(QByteArray(1, static_cast<char>(byte)), Mode::Break),
                  byte == 0x06 ? WriteAnswer::Good : WriteAnswer::ControlError)
            << byte;
}

TEST(SerialAnswer, InAnyOtherModeAWriteIsAccepted) {
    EXPECT_EQ(checkWriteAnswer({}, Mode::Other), WriteAnswer::Good);
}

TEST(SerialAnswer, TheStartIsTakenOffInDataModeOnly) {
    EXPECT_EQ(toHex(sbus::serial::withoutStart(hex("B5 01 05 02 AA BB"), Mode::Data)), "05 02 AA BB");
    EXPECT_EQ(toHex(sbus::serial::withoutStart(hex("05 02 AA BB"), Mode::Break)), "05 02 AA BB");
    EXPECT_EQ(toHex(sbus::serial::withoutStart(hex("05 02 AA BB"), Mode::Other)), "05 02 AA BB");
}

// What nothing in a Break Mode answer tells apart.

TEST(SerialAnswer, InBreakModeTheEchoOfAReadPassesForAnAnswerOfFiveBytes) {
    SBusRequestItem item;
    item.command = 2;
    item.count = 39; // flags; of 33 to 40 the answer has five bytes and a checksum
    const QByteArray echo = sbus::serial::readFrame(item, 5, Mode::Break);
    EXPECT_EQ(echo.size(), sbus::serial::readAnswerSize(5, Mode::Break));
    EXPECT_EQ(checkReadAnswer(echo, Mode::Break), ReadAnswer::Good);
    EXPECT_EQ(checkReadAnswer(sbus::serial::readFrame(item, 5, Mode::Data), Mode::Data),
              ReadAnswer::FrameError);
}

TEST(SerialAnswer, InBreakModeAZeroThatIsLostInFrontAndOneThatComesBehindAreNotSeen) {
    const QByteArray answer = withChecksum(hex("00 00 00 05"));
    EXPECT_EQ(checkReadAnswer(answer.mid(1) + hex("00"), Mode::Break), ReadAnswer::Good);
    const QByteArray inDataMode = withChecksum(hex("B5 01 00 00 00 05"));
    EXPECT_EQ(checkReadAnswer(inDataMode.left(2) + inDataMode.mid(3) + hex("00"), Mode::Data),
              ReadAnswer::ChecksumError);
}

TEST(SerialAnswer, AnAnswerTooShortForAStartHasAWrongOneInDataMode) {
    for (const QByteArray& answer : {QByteArray(), hex("B5"), hex("02")}) {
        EXPECT_EQ(checkReadAnswer(answer, Mode::Data), ReadAnswer::FrameError);
        EXPECT_EQ(checkWriteAnswer(answer, Mode::Data), WriteAnswer::FrameError);
    }
}

TEST(SerialAnswer, AnAnswerOfItsStartAloneHasAWrongChecksumInDataMode) {
    EXPECT_EQ(checkReadAnswer(hex("B5 01"), Mode::Data), ReadAnswer::ChecksumError);
    EXPECT_EQ(checkReadAnswer(hex("B5 02"), Mode::Data), ReadAnswer::NotAcknowledged);
    EXPECT_EQ(checkWriteAnswer(hex("B5 02"), Mode::Data), WriteAnswer::ChecksumError);
}
