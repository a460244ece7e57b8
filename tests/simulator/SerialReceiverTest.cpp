#include "Bench.h"

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;

namespace {

const std::string dataModeRead = "B5 00 05 06 00 00 0A 2E 57";
const std::string dataModeAnswer = "B5 01 00 00 00 2A 97 D4";
const std::string breakModeRead = "05 06 00 00 0A A5 84";
const std::string breakModeAnswer = "00 00 00 2A 85 28";

// Controller 5 with 42 in register 10.
struct BenchWith42 : Bench {
    explicit BenchWith42(Framing framing) : Bench(framing) { memory().set(Media::Registers, 10, 42); }
};

} // namespace

TEST(SerialReceiver, AnswersOnceTheLastByteIsThere) {
    BenchWith42 bench(Framing::DataMode);
    EXPECT_EQ(bench.ask(dataModeRead.substr(0, 11)), "");
    EXPECT_EQ(bench.pass(20ms), "");
    EXPECT_EQ(bench.ask(dataModeRead.substr(12)), dataModeAnswer);
}

TEST(SerialReceiver, TakesTwoTelegramsInOnePiece) {
    BenchWith42 bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask(breakModeRead + " " + breakModeRead), breakModeAnswer + " " + breakModeAnswer);
}

TEST(SerialReceiver, DropsATelegramThatBreaksOff) {
    BenchWith42 bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 06 00"), "");
    EXPECT_EQ(bench.pass(SerialReceiver::silenceLimit), "");
    EXPECT_EQ(bench.counts().malformed, 1U);
    EXPECT_EQ(bench.counts().bytesDiscarded, 5U);
    EXPECT_EQ(bench.ask(dataModeRead), dataModeAnswer);
}

TEST(SerialReceiver, DoesNotJoinTelegramsAcrossSilence) {
    BenchWith42 bench(Framing::BreakMode);
    bench.ask(breakModeRead.substr(0, 8));
    bench.pass(SerialReceiver::silenceLimit);
    EXPECT_EQ(bench.ask(breakModeRead.substr(9)), "");
    bench.pass(SerialReceiver::silenceLimit);
    EXPECT_EQ(bench.ask(breakModeRead), breakModeAnswer);
}

TEST(SerialReceiver, FindsATelegramBehindGarbageInDataMode) {
    BenchWith42 bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("00 FF B5 B5 02 " + dataModeRead), dataModeAnswer);
    EXPECT_EQ(bench.counts().bytesDiscarded, 5U);
}

TEST(SerialReceiver, FindsATelegramBehindAFalseStartInDataMode) {
    BenchWith42 bench(Framing::DataMode);
    // The false start reads as a telegram of station B5, command 00, with a wrong checksum.
    EXPECT_EQ(bench.ask("B5 00 " + dataModeRead), dataModeAnswer);
}

TEST(SerialReceiver, FindsATelegramBehindAnyGarbageByteInBreakMode) {
    for (int garbage = 0; garbage < 256; ++garbage) {
        BenchWith42 bench(Framing::BreakMode);
        const std::string answer =
            bench.ask(toHex({static_cast<std::uint8_t>(garbage)}) + " " + breakModeRead) +
            bench.pass(SerialReceiver::silenceLimit);
        EXPECT_EQ(answer, breakModeAnswer) << "behind " << garbage;
    }
}

TEST(SerialReceiver, FindsATelegramBehindAFalseLengthOnceTheLineIsSilent) {
    BenchWith42 bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0E FF " + dataModeRead), "") << "255 bytes are announced";
    EXPECT_EQ(bench.pass(SerialReceiver::silenceLimit), dataModeAnswer);
}

TEST(SerialReceiver, CountsADamagedTelegramOnce) {
    BenchWith42 bench(Framing::BreakMode);
    bench.ask("05 02 02 02 02 02 02 02 02 02");
    bench.pass(SerialReceiver::silenceLimit);
    EXPECT_EQ(bench.counts().wrongChecksums, 1U);
    EXPECT_EQ(bench.counts().malformed, 0U);
}

TEST(SerialReceiver, CountsEachDamagedTelegram) {
    BenchWith42 bench(Framing::DataMode);
    bench.ask("B5 00 05 06 00 00 0A FF FF");
    bench.ask("B5 00 05 06 00 00 0A FF FF");
    EXPECT_EQ(bench.counts().wrongChecksums, 2U);
}

TEST(SerialReceiver, EndsAnUnknownCommandWhereItsChecksumComesOutRight) {
    BenchWith42 bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 63 01"), "");
    EXPECT_EQ(bench.ask("02 03 04 05"), "");
    EXPECT_EQ(bench.ask("06 71 F5"), "B5 02 00 01 33 D5");
}

TEST(SerialReceiver, HoldsABoundedAmountOfEndlessGarbage) {
    BenchWith42 bench(Framing::BreakMode);
    for (int i = 0; i < 1000; ++i)
        bench.ask("05 63 01");
    EXPECT_GT(bench.counts().bytesDiscarded, 2500U);
}
