#include "Bench.h"

#include <gtest/gtest.h>

using namespace sim;

TEST(DataMode, ReadsCounters) {
    Bench bench(Framing::DataMode);
    bench.memory().set(Media::Counters, 10, {1, 0xFFFFFFFE});
    EXPECT_EQ(bench.ask("B5 00 05 00 01 00 0A 3E FE"), "B5 01 00 00 00 01 FF FF FF FE 43 43");
}

TEST(DataMode, ReadsFlagsLowestBitFirst) {
    Bench bench(Framing::DataMode);
    bench.memory().set(Media::Flags, 100, {1, 0, 1, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_EQ(bench.ask("B5 00 05 02 09 00 64 F7 5F"), "B5 01 05 02 A5 13");
}

TEST(DataMode, ReadsInputs) {
    Bench bench(Framing::DataMode);
    bench.memory().set(Media::Inputs, 7, 1);
    EXPECT_EQ(bench.ask("B5 00 05 03 00 00 07 43 BF"), "B5 01 01 36 1F");
}

TEST(DataMode, ReadsOutputs) {
    Bench bench(Framing::DataMode);
    bench.memory().set(Media::Outputs, 32, {1, 1, 1, 1, 0, 0, 0, 1});
    EXPECT_EQ(bench.ask("B5 00 05 05 07 00 20 B5 33"), "B5 01 8F 46 59");
}

TEST(DataMode, ReadsRegisters) {
    Bench bench(Framing::DataMode);
    bench.memory().set(Media::Registers, 10, {256, 0xB5B50000});
    EXPECT_EQ(bench.ask("B5 00 05 06 01 00 0A 19 67"), "B5 01 00 00 01 00 B5 B5 00 00 7D C7");
}

TEST(DataMode, ReadsTimers) {
    Bench bench(Framing::DataMode);
    bench.memory().set(Media::Timers, 1599, 0xFFFFFFFF);
    EXPECT_EQ(bench.ask("B5 00 05 07 00 06 3F 94 B3"), "B5 01 FF FF FF FF 8B 33");
}

TEST(DataMode, WritesCounters) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0A 05 00 02 00 00 00 07 54 90"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory().get(Media::Counters, 2), 7U);
}

TEST(DataMode, WritesOneFlagFromOneDataByte) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0B 03 00 64 00 01 3F 21"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory().get(Media::Flags, 100), 1U);
}

TEST(DataMode, WritesSeveralOutputsLowestBitFirst) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0D 04 00 08 08 05 01 EC 7C"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory().get(Media::Outputs, 8, 9),
              (std::vector<std::uint32_t>{1, 0, 1, 0, 0, 0, 0, 0, 1}));
}

TEST(DataMode, WritesRegisters) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0E 09 00 C8 80 00 00 41 FF FF FF FE 9E 9F"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory().get(Media::Registers, 200, 2),
              (std::vector<std::uint32_t>{0x80000041, 0xFFFFFFFE}));
}

TEST(DataMode, WritesTimers) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0F 05 00 03 00 00 02 58 7B 07"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory().get(Media::Timers, 3), 600U);
}

TEST(DataMode, SetsTheClock) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0C 52 07 23 12 31 23 59 58 86 36"), "B5 02 00 00 23 F4");
    const LineCounts counts = bench.counts();
    ASSERT_EQ(counts.clockSettings.size(), 1U);
    const auto& set = counts.clockSettings.front().bytes;
    EXPECT_EQ(toHex({set.begin(), set.end()}), "52 07 23 12 31 23 59 58");
}

TEST(DataMode, RefusesARegisterThatIsNotThere) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 06 01 FF FF A5 22"), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.counts().stations[5].rangeErrors, 1U);
}

TEST(DataMode, RefusesATimerThatIsNotThere) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 07 00 06 40 1B CB"), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.counts().stations[5].rangeErrors, 1U);
}

TEST(DataMode, RefusesAWriteBeyondTheEndAndWritesNothing) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0E 09 FF FF 00 00 00 01 00 00 00 02 F3 77"), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.memory().get(Media::Registers, 65535), 0U);
}

TEST(DataMode, RefusesAnUnknownCommand) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 63 01 02 03 0B BB"), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.counts().stations[5].unknownCommands, 1U);
}

TEST(DataMode, RefusesHalfAWord) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0E 02 00 0A 01 6D C8"), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(DataMode, RefusesDataThatDoesNotFitTheElementCount) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0B 03 00 0A 08 01 36 E2"), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(DataMode, RefusesAClockThatCannotBe) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0C 52 07 23 13 31 23 59 58 2C 67"), "B5 02 00 01 33 D5");
    EXPECT_TRUE(bench.counts().clockSettings.empty());
}

TEST(DataMode, ObeysABroadcastEverywhereAndAnswersNothing) {
    Bench bench(Framing::DataMode, {5, 6});
    EXPECT_EQ(bench.ask("B5 00 FF 0E 05 00 0A 00 00 00 07 A2 21"), "");
    EXPECT_EQ(bench.memory(5).get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.memory(6).get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.ask("B5 00 FF 06 00 00 0A 57 AF"), "");
    EXPECT_EQ(bench.counts().broadcasts, 2U);
    ASSERT_EQ(bench.counts().writes.size(), 1U);
    EXPECT_EQ(bench.counts().writes.front().station, 255);
}

TEST(DataMode, LeavesForeignStationsUnanswered) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 07 06 00 00 0A 6A D4"), "");
    EXPECT_EQ(bench.counts().foreignStations, 1U);
}

TEST(DataMode, IgnoresAWrongChecksum) {
    Bench bench(Framing::DataMode);
    EXPECT_EQ(bench.ask("B5 00 05 0E 05 00 0A 00 00 00 07 59 2F"), "");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.counts().wrongChecksums, 1U);
    EXPECT_EQ(bench.counts().telegrams, 0U);
}

TEST(DataMode, KeepsStationsApart) {
    Bench bench(Framing::DataMode, {5, 6});
    EXPECT_EQ(bench.ask("B5 00 06 0E 05 00 0A 00 00 00 07 74 94"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory(5).get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.ask("B5 00 06 06 00 00 0A C0 85"), "B5 01 00 00 00 07 62 1B");
}

TEST(DataMode, CountsTelegramsByStationAndCommand) {
    Bench bench(Framing::DataMode, {5, 6});
    bench.ask("B5 00 05 06 00 00 0A 2E 57");
    bench.ask("B5 00 05 06 00 00 0B 3E 76");
    bench.ask("B5 00 06 02 00 00 0A 0A 74");
    LineCounts counts = bench.counts();
    EXPECT_EQ(counts.telegrams, 3U);
    EXPECT_EQ(counts.stations[5].telegrams[6], 2U);
    EXPECT_EQ(counts.stations[5].answers, 2U);
    EXPECT_EQ(counts.stations[6].telegrams[2], 1U);
}

TEST(DataMode, ReadsNineFlagsAtAddress100OfStation1) {
    Bench bench(Framing::DataMode, {1});
    bench.memory(1).set(Media::Flags, 108, 1);
    EXPECT_EQ(bench.ask("B5 00 01 02 08 00 64 49 69"), "B5 01 00 01 6A 85");
}

TEST(DataMode, TakesASynchronisationByteInsideATelegramAsItIs) {
    Bench bench(Framing::DataMode, {0xB5});
    EXPECT_EQ(bench.ask("B5 00 B5 0E 05 00 B5 B5 00 B5 00 85 2C"), "B5 02 00 00 23 F4");
    EXPECT_EQ(bench.memory(0xB5).get(Media::Registers, 0xB5), 0xB500B500U);
}
