#include "Bench.h"

#include <gtest/gtest.h>

using namespace sim;

// Every request carries the sequence number 12 34, and so does its answer.

TEST(Ethernet, ReadsCounters) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Counters, 10, {1, 0xFFFFFFFE});
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 00 01 00 0A A5 0C"),
              "00 00 00 13 01 00 12 34 01 00 00 00 01 FF FF FF FE 33 8B");
}

TEST(Ethernet, ReadsFlagsLowestBitFirst) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Flags, 100, {1, 0, 1, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 02 09 00 64 6C AD"),
              "00 00 00 0D 01 00 12 34 01 05 02 A0 43");
}

TEST(Ethernet, ReadsInputs) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Inputs, 7, 1);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 03 00 00 07 D8 4D"),
              "00 00 00 0C 01 00 12 34 01 01 DB 71");
}

TEST(Ethernet, ReadsOutputs) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Outputs, 32, {1, 1, 1, 1, 0, 0, 0, 1});
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 05 07 00 20 2E C1"),
              "00 00 00 0C 01 00 12 34 01 8F AB 37");
}

TEST(Ethernet, ReadsRegisters) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Registers, 10, {256, 0xB5B50000});
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 06 01 00 0A 82 95"),
              "00 00 00 13 01 00 12 34 01 00 00 01 00 B5 B5 00 00 0D 0F");
}

TEST(Ethernet, ReadsTimers) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Timers, 1599, 0xFFFFFFFF);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 07 00 06 3F 0F 41"),
              "00 00 00 0F 01 00 12 34 01 FF FF FF FF F0 B9");
}

TEST(Ethernet, WritesCounters) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 14 01 00 12 34 00 05 0A 05 00 02 00 00 00 07 9A 90"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    EXPECT_EQ(bench.memory().get(Media::Counters, 2), 7U);
}

TEST(Ethernet, WritesOneFlagFromOneDataByte) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 12 01 00 12 34 00 05 0B 03 00 64 00 01 BE AB"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    EXPECT_EQ(bench.memory().get(Media::Flags, 100), 1U);
}

TEST(Ethernet, WritesSeveralOutputsLowestBitFirst) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 13 01 00 12 34 00 05 0D 04 00 08 08 05 01 9C B4"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    EXPECT_EQ(bench.memory().get(Media::Outputs, 8, 9),
              (std::vector<std::uint32_t>{1, 0, 1, 0, 0, 0, 0, 0, 1}));
}

TEST(Ethernet, WritesRegisters) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 18 01 00 12 34 00 05 0E 09 00 C8 80 00 00 41 FF FF FF FE 57 40"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    EXPECT_EQ(bench.memory().get(Media::Registers, 200, 2),
              (std::vector<std::uint32_t>{0x80000041, 0xFFFFFFFE}));
}

TEST(Ethernet, WritesTimers) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 14 01 00 12 34 00 05 0F 05 00 03 00 00 02 58 B5 07"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    EXPECT_EQ(bench.memory().get(Media::Timers, 3), 600U);
}

TEST(Ethernet, SetsTheClock) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 15 01 00 12 34 00 05 0C 52 07 23 12 31 23 59 58 16 90"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    const LineCounts counts = bench.counts();
    ASSERT_EQ(counts.clockSettings.size(), 1U);
    const auto& set = counts.clockSettings.front().bytes;
    EXPECT_EQ(toHex({set.begin(), set.end()}), "52 07 23 12 31 23 59 58");
}

TEST(Ethernet, RefusesARegisterThatIsNotThere) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 06 01 FF FF 3E D0"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_EQ(bench.counts().stations[5].rangeErrors, 1U);
}

TEST(Ethernet, RefusesATimerThatIsNotThere) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 07 00 06 40 80 39"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_EQ(bench.counts().stations[5].rangeErrors, 1U);
}

TEST(Ethernet, RefusesAWriteBeyondTheEndAndWritesNothing) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 18 01 00 12 34 00 05 0E 09 FF FF 00 00 00 01 00 00 00 02 3A A8"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_EQ(bench.memory().get(Media::Registers, 65535), 0U);
}

TEST(Ethernet, RefusesAnUnknownCommand) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 05 63 01 02 03 90 49"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_EQ(bench.counts().stations[5].unknownCommands, 1U);
}

TEST(Ethernet, RefusesHalfAWord) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 11 01 00 12 34 00 05 0E 02 00 0A 01 AE 6F"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(Ethernet, RefusesDataThatDoesNotFitTheElementCount) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 12 01 00 12 34 00 05 0B 03 00 0A 08 01 B7 68"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(Ethernet, RefusesAClockThatCannotBe) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 15 01 00 12 34 00 05 0C 52 07 23 13 31 23 59 58 BC C1"),
              "00 00 00 0D 01 00 12 34 02 00 01 36 85");
    EXPECT_TRUE(bench.counts().clockSettings.empty());
}

TEST(Ethernet, ObeysABroadcastEverywhereAndAnswersNothing) {
    Bench bench(Framing::Ethernet, {5, 6});
    EXPECT_EQ(bench.ask("00 00 00 14 01 00 12 34 00 FF 0E 05 00 0A 00 00 00 07 6C 21"), "");
    EXPECT_EQ(bench.memory(5).get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.memory(6).get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 FF 06 00 00 0A CC 5D"), "");
    EXPECT_EQ(bench.counts().broadcasts, 2U);
    ASSERT_EQ(bench.counts().writes.size(), 1U);
    EXPECT_EQ(bench.counts().writes.front().station, 255);
}

TEST(Ethernet, LeavesForeignStationsUnanswered) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 07 06 00 00 0A F1 26"), "");
    EXPECT_EQ(bench.counts().foreignStations, 1U);
}

TEST(Ethernet, IgnoresAWrongChecksum) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 14 01 00 12 34 00 05 0E 05 00 0A 00 00 00 07 97 2F"), "");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.counts().wrongChecksums, 1U);
    EXPECT_EQ(bench.counts().telegrams, 0U);
}

TEST(Ethernet, KeepsStationsApart) {
    Bench bench(Framing::Ethernet, {5, 6});
    EXPECT_EQ(bench.ask("00 00 00 14 01 00 12 34 00 06 0E 05 00 0A 00 00 00 07 BA 94"),
              "00 00 00 0D 01 00 12 34 02 00 00 26 A4");
    EXPECT_EQ(bench.memory(5).get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 12 34 00 06 06 00 00 0A 5B 77"),
              "00 00 00 0F 01 00 12 34 01 00 00 00 07 19 91");
}

TEST(Ethernet, CountsTelegramsByStationAndCommand) {
    Bench bench(Framing::Ethernet, {5, 6});
    bench.ask("00 00 00 10 01 00 12 34 00 05 06 00 00 0A B5 A5");
    bench.ask("00 00 00 10 01 00 12 34 00 05 06 00 00 0B A5 84");
    bench.ask("00 00 00 10 01 00 12 34 00 06 02 00 00 0A 91 86");
    LineCounts counts = bench.counts();
    EXPECT_EQ(counts.telegrams, 3U);
    EXPECT_EQ(counts.stations[5].telegrams[6], 2U);
    EXPECT_EQ(counts.stations[5].answers, 2U);
    EXPECT_EQ(counts.stations[6].telegrams[2], 1U);
}

TEST(Ethernet, ReadsTwoRegistersAtAddress10OfStation5) {
    Bench bench(Framing::Ethernet);
    bench.memory().set(Media::Registers, 10, {1, 2});
    EXPECT_EQ(bench.ask("00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC"),
              "00 00 00 13 01 00 00 00 01 00 00 00 01 00 00 00 02 6F 07");
}

TEST(Ethernet, IgnoresAClockTelegramWithoutHeader) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("52 07 23 12 31 23 59 58 0C A6"), "");
    EXPECT_TRUE(bench.counts().clockSettings.empty());
    EXPECT_EQ(bench.counts().malformed, 1U);
}

TEST(Ethernet, IgnoresWhatIsNoRequest) {
    Bench bench(Framing::Ethernet);
    const char* noRequests[] = {
        "00",                                              // shorter than a header
        "00 00 00 11 01 00 00 00 00 05 06 01 00 0A 70 85", // a length that is not the datagram's
        "00 00 00 10 02 00 00 00 00 05 06 01 00 0A 19 03", // another version
        "00 00 00 10 01 01 00 00 00 05 06 01 00 0A 43 EF", // another protocol type
        "00 00 00 10 01 00 00 00 01 05 06 01 00 0A ED 6C", // an answer
        "00 00 00 0C 01 00 00 00 00 05 47 6E",             // no command
    };
    for (const char* datagram : noRequests)
        EXPECT_EQ(bench.ask(datagram), "") << datagram;
    EXPECT_EQ(bench.counts().malformed, 6U);
    EXPECT_EQ(bench.counts().telegrams, 0U);
}

TEST(Ethernet, RefusesAReadOfAnotherLength) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 11 01 00 00 07 00 05 06 01 00 0A 00 3C 8F"),
              "00 00 00 0D 01 00 00 07 02 00 01 C1 69");
    EXPECT_EQ(bench.counts().stations[5].malformed, 1U);
}

TEST(Ethernet, WritesTheTwoHalvesOfADoubleIntoTwoRegisters) {
    Bench bench(Framing::Ethernet);
    EXPECT_EQ(bench.ask("00 00 00 18 01 00 00 00 00 05 0E 09 00 0A 3F F8 00 00 00 00 00 00 B6 7E"),
              "00 00 00 0D 01 00 00 00 02 00 00 80 65");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10, 2), (std::vector<std::uint32_t>{0x3FF80000, 0}));
}
