#include "telegram/AnswerTelegram.h"
#include "telegram/TelegramText.h"

#include <gtest/gtest.h>

namespace host {
namespace {

// A line and the telegram that went out on it.
struct Asked {
    Framing framing;
    const char* sent;
};

std::string text(const Asked& asked, const std::string& received, bool isFloat = false) {
    return answerText(asked.framing, bytesOfHexText(asked.sent), bytesOfHexText(received), isFloat);
}

Answer answer(const Asked& asked, const std::string& received) {
    return answerTo(asked.framing, bytesOfHexText(asked.sent), bytesOfHexText(received));
}

void expectGood(const Asked& asked, const std::string& received, const std::string& words) {
    EXPECT_EQ(answer(asked, received), Answer::Good) << received;
    EXPECT_EQ(text(asked, received), words) << received;
}

void expectRefused(const Asked& asked, const std::string& received, const std::string& words) {
    EXPECT_EQ(answer(asked, received), Answer::Refused) << received;
    EXPECT_EQ(text(asked, received), words) << received;
}

void expectDamaged(const Asked& asked, const std::string& received, const std::string& fault) {
    EXPECT_EQ(answer(asked, received), Answer::Damaged) << received;
    EXPECT_EQ(text(asked, received), "damaged: " + fault) << received;
}

void expectForeign(const Asked& asked, const std::string& received, const std::string& reason) {
    EXPECT_EQ(answer(asked, received), Answer::Foreign) << received;
    EXPECT_EQ(text(asked, received), "answer to another telegram (" + reason + ")") << received;
}

void expectSilent(const Asked& asked) {
    EXPECT_EQ(answer(asked, ""), Answer::Silent) << asked.sent;
    EXPECT_EQ(text(asked, ""), "no answer") << asked.sent;
}

std::optional<unsigned> code(Framing framing, const char* received) {
    return acknowledgeCodeOf(framing, bytesOfHexText(received));
}

namespace dataMode {
constexpr Asked registers{Framing::DataMode, "B5 00 05 06 01 00 0A 19 67"}; // 2 from R10
constexpr Asked flags{Framing::DataMode, "B5 00 01 02 08 00 64 49 69"};     // 9 from F100
constexpr Asked write{Framing::DataMode, "B5 00 05 0E 05 00 0A 00 00 00 0C E8 BB"};
constexpr Asked clock{Framing::DataMode, "B5 00 05 0C 52 07 23 12 31 23 59 58 86 36"};
} // namespace dataMode

namespace breakMode {
constexpr Asked registers{Framing::BreakMode, "05 06 01 00 0A 92 B4"};
constexpr Asked flags{Framing::BreakMode, "01 02 08 00 64 C2 BA"};
constexpr Asked input{Framing::BreakMode, "05 03 00 00 05 E8 2E"}; // I5
constexpr Asked write{Framing::BreakMode, "05 0F 05 00 05 00 00 00 64 D8 DC"};
constexpr Asked clock{Framing::BreakMode, "05 0C 52 07 23 12 31 23 59 58 7B C6"};
} // namespace breakMode

namespace ethernet { // sequence number 7
constexpr Asked registers{Framing::Ethernet, "00 00 00 10 01 00 00 07 00 05 06 01 00 0A B1 88"};
constexpr Asked inputs{Framing::Ethernet, "00 00 00 10 01 00 00 07 00 05 03 09 00 05 55 83"}; // 10 from I5
constexpr Asked write{Framing::Ethernet, "00 00 00 12 01 00 00 07 00 05 0D 03 00 C8 00 01 68 ED"};
constexpr Asked clock{Framing::Ethernet, "52 07 23 12 31 23 59 58 0C A6"};
} // namespace ethernet

} // namespace

TEST(AnswerInDataMode, GivesValues) {
    expectGood(dataMode::registers, "B5 01 00 00 00 0C FF FF FF FE 62 39", "2 registers from R10: 12, -2");
    expectGood(dataMode::flags, "B5 01 05 01 95 70", "9 flags from F100: on off on off off off off off on");
}

TEST(AnswerInDataMode, GivesEightBitsInOneByte) {
    const Asked eightFlags{Framing::DataMode, "B5 00 01 02 07 00 64 65 58"};
    expectGood(eightFlags, "B5 01 81 A7 97", "8 flags from F100: on off off off off off off on");
}

TEST(AnswerInDataMode, GivesFloatingPointValues) {
    const Asked level{Framing::DataMode, "B5 00 05 06 00 00 1E 7C E2"};
    EXPECT_EQ(text(level, "B5 01 C0 00 00 41 F9 BD", true), "R30: 1.5");
}

TEST(AnswerInDataMode, AcknowledgesAWrite) {
    expectGood(dataMode::write, "B5 02 00 00 23 F4", "acknowledged");
    expectGood(dataMode::clock, "B5 02 00 00 23 F4", "acknowledged");
}

TEST(AnswerInDataMode, RefusesAWriteThatTheDriverTakesForDone) {
    expectRefused(dataMode::write, "B5 02 00 01 33 D5", "refused (code 1)");
    expectRefused(dataMode::clock, "B5 02 02 03 75 F5", "refused (code 515)");
}

TEST(AnswerInDataMode, RefusesAReadWithFewerBytesThanAreAwaited) {
    expectRefused(dataMode::registers, "B5 02 00 01 33 D5", "refused (code 1)");
    expectRefused(dataMode::flags, "B5 02 00 01 33 D5", "refused (code 1)");
}

TEST(AnswerInDataMode, IsDamagedByAWrongChecksum) {
    expectDamaged(dataMode::registers, "B5 01 00 00 00 0C FF FF FF FE 62 38", "wrong checksum");
    expectDamaged(dataMode::write, "B5 02 00 00 23 F5", "wrong checksum");
    expectDamaged(dataMode::write, "B5 02 00 01 23 F4", "wrong checksum");
    expectDamaged(dataMode::registers, "B5 02 00 01 33 D4", "wrong checksum");
}

TEST(AnswerInDataMode, IsDamagedWhenCutOff) {
    expectDamaged(dataMode::registers, "B5", "1 of 12 bytes");
    expectDamaged(dataMode::registers, "B5 01 00 00 00 0C FF", "7 of 12 bytes");
    expectDamaged(dataMode::registers, "B5 01 F1 D9", "4 of 12 bytes");
    expectDamaged(dataMode::registers, "B5 F7 7E", "3 of 12 bytes");
    expectDamaged(dataMode::registers, "B5 02 00", "3 of 6 bytes");
    expectDamaged(dataMode::write, "B5 02 00 00 23", "5 of 6 bytes");
}

TEST(AnswerInDataMode, IsDamagedWhenTooLong) {
    expectDamaged(dataMode::registers, "B5 01 00 00 00 0C FF FF FF FE 00 00 00 01 FF AF",
                  "16 bytes instead of 12");
    expectDamaged(dataMode::registers, "B5 01 00 00 00 0C FF FF FF FE 62 39 00", "13 bytes instead of 12");
    expectDamaged(dataMode::write, "B5 02 00 00 00 E0 01", "7 bytes instead of 6");
}

TEST(AnswerInDataMode, IsDamagedWithoutItsStart) {
    expectDamaged(dataMode::registers, "01 00 00 00 0C FF FF FF FE 62 39", "begins with 01, not B5");
}

TEST(AnswerInDataMode, IsForeignWhenSoundButOfAnotherKind) {
    expectForeign(dataMode::registers, "B5 02 00 00 23 F4", "an acknowledge without values");
    expectForeign(dataMode::write, "B5 01 05 01 95 70", "values without an acknowledge");
    expectForeign(dataMode::registers, dataMode::registers.sent, "attribute 0");
}

TEST(AnswerInBreakMode, GivesValues) {
    expectGood(breakMode::registers, "00 00 00 0C FF FF FF FE 02 C5", "2 registers from R10: 12, -2");
    expectGood(breakMode::flags, "05 01 EF D4", "9 flags from F100: on off on off off off off off on");
    expectGood(breakMode::input, "01 10 21", "I5: on");
}

TEST(AnswerInBreakMode, AcknowledgesAWriteWithOneByte) {
    expectGood(breakMode::write, "06", "acknowledged");
    expectGood(breakMode::clock, "06", "acknowledged");
}

TEST(AnswerInBreakMode, RefusesWithOneByte) {
    expectRefused(breakMode::write, "15", "refused");
    expectRefused(breakMode::registers, "15", "refused");
}

TEST(AnswerInBreakMode, IsDamagedByAWrongChecksum) {
    expectDamaged(breakMode::registers, "00 00 00 0C FF FF FF FE 02 C4", "wrong checksum");
}

TEST(AnswerInBreakMode, IsDamagedByAnotherLength) {
    expectDamaged(breakMode::registers, "00 00 00", "3 of 10 bytes");
    // Zeros end with their checksum wherever they are cut off.
    expectDamaged(breakMode::registers, "00 00 00 00 00 00", "6 of 10 bytes");
    expectDamaged(breakMode::registers, "05", "1 of 10 bytes");
    expectDamaged(breakMode::registers, "00 00 00 0C FF FF FF FE 02 C5 00", "11 bytes instead of 10");
    expectDamaged(breakMode::write, "06 06", "2 bytes instead of 1");
}

TEST(AnswerInBreakMode, IsDamagedWhenAWriteFindsAnotherByte) {
    expectDamaged(breakMode::write, "07", "07 is no acknowledge");
}

TEST(AnswerInBreakMode, IsForeignWhenAReadIsAcknowledged) {
    expectForeign(breakMode::registers, "06", "an acknowledge without values");
}

TEST(AnswerOnEthernet, GivesValues) {
    expectGood(ethernet::registers, "00 00 00 13 01 00 00 07 01 00 00 00 0C FF FF FF FE FB 2B",
               "2 registers from R10: 12, -2");
    expectGood(ethernet::inputs, "00 00 00 0D 01 00 00 07 01 05 02 57 AF",
               "10 inputs from I5: on off on off off off off off off on");
}

TEST(AnswerOnEthernet, AcknowledgesAWrite) {
    expectGood(ethernet::write, "00 00 00 0D 01 00 00 07 02 00 00 D1 48", "acknowledged");
}

TEST(AnswerOnEthernet, RefusesReadsAndWrites) {
    for (const Asked& asked : {ethernet::registers, ethernet::write})
        expectRefused(asked, "00 00 00 0D 01 00 00 07 02 00 05 81 ED", "refused (code 5)");
}

TEST(AnswerOnEthernet, IsForeignWithAnotherSequenceNumber) {
    expectForeign(ethernet::registers, "00 00 00 13 01 00 00 06 01 00 00 00 0C FF FF FF FE 94 6E",
                  "sequence 6, not 7");
    expectForeign(ethernet::write, "00 00 00 0D 01 00 00 06 02 00 00 A7 FC", "sequence 6, not 7");
}

TEST(AnswerOnEthernet, IsForeignWhenSoundButOfAnotherKind) {
    expectForeign(ethernet::registers, "00 00 00 0D 01 00 00 07 02 00 00 D1 48",
                  "an acknowledge without values");
    expectForeign(ethernet::write, "00 00 00 13 01 00 00 07 01 00 00 00 0C FF FF FF FE FB 2B",
                  "values without an acknowledge");
    expectForeign(ethernet::write, "00 00 00 0D 01 00 00 07 03 00 00 E6 78", "attribute 3");
}

TEST(AnswerOnEthernet, IsForeignToTheClockWhichHasNoSequenceNumber) {
    expectForeign(ethernet::clock, "00 00 00 0D 01 00 00 07 02 00 00 D1 48",
                  "sequence 7, and the clock telegram has none");
    expectDamaged(ethernet::clock, "00 00 00 0D 01 00 00 07 02 00 00 D1 49", "wrong checksum");
}

TEST(AnswerOnEthernet, IsDamagedByAWrongChecksumBeforeAnythingElse) {
    expectDamaged(ethernet::registers, "00 00 00 13 01 00 00 06 01 00 00 00 0C FF FF FF FE FB 2B",
                  "wrong checksum");
    expectDamaged(ethernet::write, "00 00 00 0D 01 00 00 07 02 00 05 D1 48", "wrong checksum");
}

TEST(AnswerOnEthernet, IsDamagedWhenItsLengthIsNotThatOfItsBytes) {
    expectDamaged(ethernet::registers, "00", "1 of 19 bytes");
    expectDamaged(ethernet::registers, "00 00 00 10 01", "5 of 16 bytes");
    expectDamaged(ethernet::registers, "FF FF FF FF 01", "5 of 4294967295 bytes");
    expectDamaged(ethernet::write, "00 00 00 0D 01 00 00 07 02 00 00 D1 48 00", "14 bytes instead of 13");
    expectDamaged(ethernet::write, "00 00 00 05 01", "5 of 13 bytes");
}

TEST(AnswerOnEthernet, IsDamagedByOtherThanTheElementsAskedFor) {
    expectDamaged(ethernet::registers, "00 00 00 0F 01 00 00 07 01 00 00 00 0C 1E 0E", "15 of 19 bytes");
    expectDamaged(ethernet::registers, "00 00 00 17 01 00 00 07 01 00 00 00 0C FF FF FF FE 00 00 00 01 17 E3",
                  "23 bytes instead of 19");
    expectDamaged(ethernet::registers, "00 00 00 0B 01 00 00 07 01 E0 45", "11 of 19 bytes");
}

TEST(AnswerOnEthernet, IsDamagedByAnAcknowledgeOfAnotherLength) {
    expectDamaged(ethernet::write, "00 00 00 0C 01 00 00 07 02 00 F4 39", "12 of 13 bytes");
    expectDamaged(ethernet::write, "00 00 00 0E 01 00 00 07 02 00 00 00 BE 18", "14 bytes instead of 13");
}

TEST(Answer, IsSilentWhenNothingCame) {
    for (const Asked& asked : {dataMode::registers, dataMode::write, breakMode::registers, breakMode::write,
                               ethernet::registers, ethernet::write, ethernet::clock})
        expectSilent(asked);
}

TEST(Answer, IsForeignAfterBytesThatAreNoRequest) {
    for (const Framing framing : {Framing::Ethernet, Framing::DataMode, Framing::BreakMode}) {
        const Asked nothing{framing, "B5 00 05 63 00 00"};
        EXPECT_EQ(answer(nothing, "06"), Answer::Foreign);
        EXPECT_EQ(text(nothing, "06"), "answer to an unknown telegram");
    }
}

TEST(AcknowledgeCode, IsThatOfASoundAcknowledge) {
    EXPECT_EQ(code(Framing::DataMode, "B5 02 00 00 23 F4"), 0U);
    EXPECT_EQ(code(Framing::DataMode, "B5 02 02 03 75 F5"), 0x203U);
    EXPECT_EQ(code(Framing::Ethernet, "00 00 00 0D 01 00 00 07 02 00 05 81 ED"), 5U);
}

TEST(AcknowledgeCode, IsNoneOfAnythingElse) {
    EXPECT_EQ(code(Framing::BreakMode, "15"), std::nullopt);
    EXPECT_EQ(code(Framing::DataMode, ""), std::nullopt);
    EXPECT_EQ(code(Framing::DataMode, "B5 02 02 03 75 F4"), std::nullopt) << "wrong checksum";
    EXPECT_EQ(code(Framing::DataMode, "B5 01 05 01 95 70"), std::nullopt) << "values";
    EXPECT_EQ(code(Framing::Ethernet, "00 00 00 0E 01 00 00 07 02 00 00 00 BE 18"), std::nullopt)
        << "too long";
}

} // namespace host
