#include "Bench.h"

#include <gtest/gtest.h>

using namespace sim;

TEST(BreakMode, ReadsCounters) {
    Bench bench(Framing::BreakMode);
    bench.memory().set(Media::Counters, 10, {1, 0xFFFFFFFE});
    EXPECT_EQ(bench.ask("05 00 01 00 0A B5 2D"), "00 00 00 01 FF FF FF FE 23 BF");
}

TEST(BreakMode, ReadsFlagsLowestBitFirst) {
    Bench bench(Framing::BreakMode);
    bench.memory().set(Media::Flags, 100, {1, 0, 1, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_EQ(bench.ask("05 02 09 00 64 7C 8C"), "05 02 DF B7");
}

TEST(BreakMode, ReadsInputs) {
    Bench bench(Framing::BreakMode);
    bench.memory().set(Media::Inputs, 7, 1);
    EXPECT_EQ(bench.ask("05 03 00 00 07 C8 6C"), "01 10 21");
}

TEST(BreakMode, ReadsOutputs) {
    Bench bench(Framing::BreakMode);
    bench.memory().set(Media::Outputs, 32, {1, 1, 1, 1, 0, 0, 0, 1});
    EXPECT_EQ(bench.ask("05 05 07 00 20 3E E0"), "8F 60 67");
}

TEST(BreakMode, ReadsRegisters) {
    Bench bench(Framing::BreakMode);
    bench.memory().set(Media::Registers, 10, {256, 0xB5B50000});
    EXPECT_EQ(bench.ask("05 06 01 00 0A 92 B4"), "00 00 01 00 B5 B5 00 00 1D 3B");
}

TEST(BreakMode, ReadsTimers) {
    Bench bench(Framing::BreakMode);
    bench.memory().set(Media::Timers, 1599, 0xFFFFFFFF);
    EXPECT_EQ(bench.ask("05 07 00 06 3F 1F 60"), "FF FF FF FF 99 CF");
}

TEST(BreakMode, WritesCounters) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0A 05 00 02 00 00 00 07 AB 73"), "06");
    EXPECT_EQ(bench.memory().get(Media::Counters, 2), 7U);
}

TEST(BreakMode, WritesOneFlagFromOneDataByte) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0B 03 00 64 00 01 03 5D"), "06");
    EXPECT_EQ(bench.memory().get(Media::Flags, 100), 1U);
}

TEST(BreakMode, WritesSeveralOutputsLowestBitFirst) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0D 04 00 08 08 05 01 67 A3"), "06");
    EXPECT_EQ(bench.memory().get(Media::Outputs, 8, 9),
              (std::vector<std::uint32_t>{1, 0, 1, 0, 0, 0, 0, 0, 1}));
}

TEST(BreakMode, WritesRegisters) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0E 09 00 C8 80 00 00 41 FF FF FF FE 2C 5D"), "06");
    EXPECT_EQ(bench.memory().get(Media::Registers, 200, 2),
              (std::vector<std::uint32_t>{0x80000041, 0xFFFFFFFE}));
}

TEST(BreakMode, WritesTimers) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0F 05 00 03 00 00 02 58 84 E4"), "06");
    EXPECT_EQ(bench.memory().get(Media::Timers, 3), 600U);
}

TEST(BreakMode, SetsTheClock) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0C 52 07 23 12 31 23 59 58 7B C6"), "06");
    const LineCounts counts = bench.counts();
    ASSERT_EQ(counts.clockSettings.size(), 1U);
    const auto& set = counts.clockSettings.front().bytes;
    EXPECT_EQ(toHex({set.begin(), set.end()}), "52 07 23 12 31 23 59 58");
}

TEST(BreakMode, RefusesARegisterThatIsNotThere) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 06 01 FF FF 2E F1"), "15");
    EXPECT_EQ(bench.counts().stations[5].rangeErrors, 1U);
}

TEST(BreakMode, RefusesATimerThatIsNotThere) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 07 00 06 40 90 18"), "15");
    EXPECT_EQ(bench.counts().stations[5].rangeErrors, 1U);
}

TEST(BreakMode, RefusesAWriteBeyondTheEndAndWritesNothing) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0E 09 FF FF 00 00 00 01 00 00 00 02 41 B5"), "15");
    EXPECT_EQ(bench.memory().get(Media::Registers, 65535), 0U);
}

TEST(BreakMode, RefusesAnUnknownCommand) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 63 01 02 03 80 68"), "15");
    EXPECT_EQ(bench.counts().stations[5].unknownCommands, 1U);
}

TEST(BreakMode, RefusesHalfAWord) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0E 02 00 0A 01 9E 2B"), "15");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(BreakMode, RefusesDataThatDoesNotFitTheElementCount) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0B 03 00 0A 08 01 0A 9E"), "15");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(BreakMode, RefusesAClockThatCannotBe) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0C 52 07 23 13 31 23 59 58 D1 97"), "15");
    EXPECT_TRUE(bench.counts().clockSettings.empty());
}

TEST(BreakMode, ObeysABroadcastEverywhereAndAnswersNothing) {
    Bench bench(Framing::BreakMode, {5, 6});
    EXPECT_EQ(bench.ask("FF 0E 05 00 0A 00 00 00 07 5D C2"), "");
    EXPECT_EQ(bench.memory(5).get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.memory(6).get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.ask("FF 06 00 00 0A DC 7C"), "");
    EXPECT_EQ(bench.counts().broadcasts, 2U);
    ASSERT_EQ(bench.counts().writes.size(), 1U);
    EXPECT_EQ(bench.counts().writes.front().station, 255);
}

TEST(BreakMode, LeavesForeignStationsUnanswered) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("07 06 00 00 0A E1 07"), "");
    EXPECT_EQ(bench.counts().foreignStations, 1U);
}

TEST(BreakMode, IgnoresAWrongChecksum) {
    Bench bench(Framing::BreakMode);
    EXPECT_EQ(bench.ask("05 0E 05 00 0A 00 00 00 07 A6 CC"), "");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.counts().wrongChecksums, 1U);
    EXPECT_EQ(bench.counts().telegrams, 0U);
}

TEST(BreakMode, KeepsStationsApart) {
    Bench bench(Framing::BreakMode, {5, 6});
    EXPECT_EQ(bench.ask("06 0E 05 00 0A 00 00 00 07 8B 77"), "06");
    EXPECT_EQ(bench.memory(5).get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.ask("06 06 00 00 0A 4B 56"), "00 00 00 07 70 E7");
}

TEST(BreakMode, CountsTelegramsByStationAndCommand) {
    Bench bench(Framing::BreakMode, {5, 6});
    bench.ask("05 06 00 00 0A A5 84");
    bench.ask("05 06 00 00 0B B5 A5");
    bench.ask("06 02 00 00 0A 81 A7");
    LineCounts counts = bench.counts();
    EXPECT_EQ(counts.telegrams, 3U);
    EXPECT_EQ(counts.stations[5].telegrams[6], 2U);
    EXPECT_EQ(counts.stations[5].answers, 2U);
    EXPECT_EQ(counts.stations[6].telegrams[2], 1U);
}

TEST(BreakMode, ReadsNineFlagsAtAddress100OfStation1) {
    Bench bench(Framing::BreakMode, {1});
    bench.memory(1).set(Media::Flags, 100, 1);
    EXPECT_EQ(bench.ask("01 02 08 00 64 C2 BA"), "01 00 33 31");
}
