#include "Movement.h"
#include "FloatWord.h"

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;

namespace {

// What an element of station 0 shows at a time.
std::uint32_t at(std::chrono::milliseconds time, Media media, unsigned address) {
    Memory memory;
    moveElements(memory, 0, time);
    return memory.get(media, address);
}

} // namespace

TEST(Movement, TogglesInputsAndFlagsAtTheirOwnPace) {
    EXPECT_EQ(at(999ms, Media::Inputs, 0), 0U);
    EXPECT_EQ(at(1000ms, Media::Inputs, 0), 1U);
    EXPECT_EQ(at(2000ms, Media::Inputs, 0), 0U);
    EXPECT_EQ(at(1999ms, Media::Flags, 1), 0U);
    EXPECT_EQ(at(2000ms, Media::Flags, 1), 1U);
}

TEST(Movement, RampsRegisters) {
    EXPECT_EQ(at(0ms, Media::Registers, 0), 0U);
    EXPECT_EQ(at(100ms, Media::Registers, 0), 1U);
    EXPECT_EQ(at(0ms, Media::Registers, 1), 10U);
    EXPECT_EQ(at(100000ms, Media::Registers, 0), 0U);
}

TEST(Movement, SwingsRegistersBetweenMinusAndPlus1000) {
    EXPECT_EQ(at(0ms, Media::Registers, 100), 0U);
    EXPECT_EQ(at(15s, Media::Registers, 100), 1000U);
    EXPECT_EQ(static_cast<std::int32_t>(at(45s, Media::Registers, 100)), -1000);
}

TEST(Movement, CountsSeconds) {
    EXPECT_EQ(at(41999ms, Media::Registers, 200), 41U);
    EXPECT_EQ(at(5s, Media::Registers, 203), 8U);
    EXPECT_EQ(at(5s, Media::Counters, 0), 5U);
    EXPECT_EQ(at(5s, Media::Counters, 1), 2U);
}

TEST(Movement, MovesFloatingPointWords) {
    EXPECT_EQ(at(0ms, Media::Registers, 300), encodeFloatWord(50.0));
    EXPECT_EQ(at(15s, Media::Registers, 300), encodeFloatWord(100.0));
    EXPECT_EQ(at(1s, Media::Registers, 400), encodeFloatWord(1.0));
}

TEST(Movement, LetsTimersRunDown) {
    EXPECT_EQ(at(0ms, Media::Timers, 0), 600U);
    EXPECT_EQ(at(60s, Media::Timers, 0), 0U);
    EXPECT_EQ(at(60100ms, Media::Timers, 0), 600U);
}

TEST(Movement, LeavesOutputsAndTheRestAlone) {
    Memory memory;
    moveElements(memory, 5, 12345ms);
    for (unsigned address = 0; address < 1000; ++address)
        EXPECT_EQ(memory.get(Media::Outputs, address), 0U);
    EXPECT_EQ(memory.get(Media::Registers, 500), 0U);
    EXPECT_EQ(memory.get(Media::Flags, 64), 0U);
}

TEST(Movement, LeavesWhatWasSetAlone) {
    Memory memory;
    memory.set(Media::Registers, 0, 7);
    moveElements(memory, 0, 5s);
    EXPECT_EQ(memory.get(Media::Registers, 0), 7U);
    EXPECT_EQ(memory.get(Media::Registers, 1), 60U);
}

TEST(Movement, MovesThePointsOfTheSiteWhereverTheyAre) {
    const std::vector<SitePoint> points = {{Media::Flags, 4'001, false},     {Media::Registers, 5'000, false},
                                           {Media::Registers, 5'100, true},  {Media::Timers, 1'000, false},
                                           {Media::Counters, 1'001, false},  {Media::Registers, 50, true},
                                           {Media::Registers, 60'000, true}, {Media::Outputs, 32, false}};
    Memory memory;
    movePoints(memory, 0, points, 15s);
    EXPECT_EQ(memory.get(Media::Flags, 4'001), 1U);
    EXPECT_EQ(memory.get(Media::Registers, 5'000), 150U);
    EXPECT_EQ(memory.get(Media::Registers, 5'100), encodeFloatWord(100.0));
    EXPECT_EQ(memory.get(Media::Timers, 1'000), 450U);
    EXPECT_EQ(memory.get(Media::Counters, 1'001), 7U);
    EXPECT_NEAR(memory.getFloat(Media::Registers, 50), 0.0, 0.001); // half a minute ahead of 5100
    EXPECT_EQ(memory.get(Media::Outputs, 32), 0U);
}

TEST(Movement, MovesPointsOfFormatIeeeAlongASine) {
    Memory memory;
    movePoints(memory, 0, {{Media::Registers, 5'100, false, true}, {Media::Registers, 350, false, true}},
               15s);
    EXPECT_EQ(memory.get(Media::Registers, 5'100), 0x42C8'0000U); // 100
    EXPECT_EQ(memory.get(Media::Registers, 350), 0U) << "in place of the controller's word";
}

// In a range that moves in the form of the point, the range has it.
TEST(Movement, LeavesPointsThatMoveAnywayToTheirRange) {
    Memory memory;
    moveElements(memory, 0, 15s);
    const std::uint32_t sine = memory.get(Media::Registers, 150);
    movePoints(memory, 0, {{Media::Registers, 150, false}}, 15s);
    EXPECT_EQ(memory.get(Media::Registers, 150), sine);
    movePoints(memory, 0, {{Media::Registers, 400, false}}, 15s);
    EXPECT_EQ(memory.get(Media::Registers, 400), 150U);
}

TEST(Movement, FitsIntoASmallMemory) {
    MemorySizes sizes;
    sizes.set(Media::Registers, 250);
    sizes.set(Media::Timers, 0);
    Memory memory(sizes);
    moveElements(memory, 0, 5s);
    EXPECT_EQ(memory.get(Media::Registers, 249), 54U);
}
