#include "Bench.h"
#include "FloatWord.h"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

using namespace sim;

TEST(Checksum, OfTheCheckText) {
    const std::string text = "123456789";
    const Bytes bytes(text.begin(), text.end());
    EXPECT_EQ(checksum(bytes.data(), bytes.size()), 0x31C3);
}

TEST(FloatWord, ShowsNumbers) {
    EXPECT_EQ(encodeFloatWord(1.0), 0x80000041U);
    EXPECT_EQ(encodeFloatWord(-1.0), 0x800000C1U);
    EXPECT_EQ(encodeFloatWord(100.0), 0xC8000047U);
    EXPECT_EQ(encodeFloatWord(0.5), 0x80000040U);
    EXPECT_EQ(encodeFloatWord(0.0), 0U);
}

TEST(FloatWord, RoundsUpToTheNextExponent) {
    EXPECT_EQ(encodeFloatWord(0.99999999999), 0x80000041U);
}

TEST(FloatWord, SaturatesOutsideItsRange) {
    EXPECT_EQ(encodeFloatWord(1e30), 0xFFFFFF7FU);
    EXPECT_EQ(encodeFloatWord(-std::numeric_limits<double>::infinity()), 0xFFFFFFFFU);
    EXPECT_EQ(encodeFloatWord(1e-30), 0U);
    EXPECT_EQ(encodeFloatWord(std::numeric_limits<double>::quiet_NaN()), 0U);
}

TEST(FloatWord, ReadsWhatItShows) {
    for (const double value : {0.0, 1.0, -1.0, 100.0, 0.0078125, -123.5, 16777215.0, 1048576.25})
        EXPECT_EQ(decodeFloatWord(encodeFloatWord(value)), value);
    EXPECT_NEAR(decodeFloatWord(encodeFloatWord(3.14159)), 3.14159, 1e-6);
}

TEST(FloatWord, TakesAnUnnormalisedFractionAsItStands) {
    EXPECT_EQ(decodeFloatWord(0x40000041), 0.5);
}

TEST(Memory, HoldsBitsAsZeroOrOne) {
    Memory memory;
    memory.set(Media::Flags, 3, 2);
    EXPECT_EQ(memory.get(Media::Flags, 3), 0U);
    memory.set(Media::Flags, 3, 3);
    EXPECT_EQ(memory.get(Media::Flags, 3), 1U);
}

TEST(Memory, HoldsFloatingPointWords) {
    Memory memory;
    memory.setFloat(Media::Registers, 3, 7.5);
    EXPECT_EQ(memory.getFloat(Media::Registers, 3), 7.5);
}

TEST(Memory, EndsWhereItsSizesSay) {
    Memory memory;
    EXPECT_TRUE(memory.covers(Media::Registers, 65535, 1));
    EXPECT_FALSE(memory.covers(Media::Registers, 65535, 2));
    EXPECT_FALSE(memory.covers(Media::Counters, 1600, 1));
    EXPECT_THROW(memory.get(Media::Timers, 1600), std::out_of_range);
    EXPECT_THROW(memory.set(Media::Timers, 1599, {1, 2}), std::out_of_range);
    EXPECT_EQ(memory.get(Media::Timers, 1599), 0U) << "nothing was set";
}

TEST(Records, KeepWritesInOrder) {
    Bench bench(Framing::BreakMode);
    bench.ask("05 0E 09 00 0A 00 00 00 07 00 00 00 08 23 DB");
    bench.ask("05 0B 03 00 64 00 01 03 5D");
    const LineCounts counts = bench.counts();
    ASSERT_EQ(counts.writes.size(), 3U);
    EXPECT_EQ(counts.writes[1].media, Media::Registers);
    EXPECT_EQ(counts.writes[1].address, 11U);
    EXPECT_EQ(counts.writes[1].value, 8U);
    EXPECT_EQ(counts.writes[1].station, 5);
    EXPECT_EQ(counts.writes[2].media, Media::Flags);
    EXPECT_EQ(counts.writes[2].value, 1U);
}

TEST(Records, ForgetTheOldestAndKeepCounting) {
    Bench bench(Framing::BreakMode, {5}, 1, 2);
    bench.ask("05 0E 0D 00 0A 00 00 00 07 00 00 00 08 00 00 00 09 33 6C");
    EXPECT_EQ(bench.counts().writes.size(), 2U);
    EXPECT_EQ(bench.counts().writes.front().value, 8U);
    EXPECT_EQ(bench.counts().writesInAll, 3U);
}

TEST(Silence, NeitherObeysNorAnswersUntilTheControllerReturns) {
    Bench bench(Framing::BreakMode);
    EXPECT_TRUE(bench.line.silence(5, true));
    EXPECT_EQ(bench.ask("05 0E 05 00 0A 00 00 00 07 A6 33"), "");
    EXPECT_EQ(bench.ask("FF 0E 05 00 0A 00 00 00 07 5D C2"), "");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.counts().stations[5].unanswered, 1U);
    EXPECT_TRUE(bench.line.silence(5, false));
    EXPECT_EQ(bench.ask("05 0E 05 00 0A 00 00 00 07 A6 33"), "06");
    EXPECT_FALSE(bench.line.silence(6, true));
}
