#include "plan/WritePlan.h"

#include <gtest/gtest.h>

namespace host {
namespace {

WordWrite integer(const char* address, double value) {
    return {0, *parseElementAddress(address).address, false, value};
}

WordWrite real(const char* address, double value) {
    return {0, *parseElementAddress(address).address, true, value};
}

// "R1=5 R2=6 | T3=7": the commands in order, each with its writes.
std::string told(const std::vector<WordCommand>& commands) {
    std::string text;
    for (const WordCommand& command : commands) {
        text += text.empty() ? "" : " | ";
        for (const WordWrite& write : command)
            text += (&write == &command.front() ? "" : " ") + toText(write.address) + "=" +
                    std::to_string(static_cast<int>(write.value));
    }
    return text;
}

TEST(WritePlan, ConsecutiveRegistersTravelAsOneList) {
    EXPECT_EQ(told(planWordWrites({integer("R12", 3), integer("R10", 1), integer("R11", 2)})),
              "R10=1 R11=2 R12=3");
}

TEST(WritePlan, AGapBeginsTheNextCommand) {
    EXPECT_EQ(told(planWordWrites({integer("R1", 1), integer("R2", 2), integer("R4", 4)})),
              "R1=1 R2=2 | R4=4");
}

TEST(WritePlan, MediaDoNotMix) {
    EXPECT_EQ(told(planWordWrites({integer("T2", 1), integer("R1", 2), integer("C3", 3)})),
              "C3=3 | R1=2 | T2=1");
}

TEST(WritePlan, AFloatGoesByItself) {
    EXPECT_EQ(told(planWordWrites({integer("R1", 1), real("R2", 2), real("R3", 3), integer("R4", 4)})),
              "R1=1 | R2=2 | R3=3 | R4=4");
}

TEST(WritePlan, AListHoldsNoMoreThanThirtyOneValues) {
    std::vector<WordWrite> writes;
    for (unsigned number = 0; number < 63; ++number)
        writes.push_back({0, {'R', number}, false, 0});
    const std::vector<WordCommand> commands = planWordWrites(writes);
    ASSERT_EQ(commands.size(), 3U);
    EXPECT_EQ(commands[0].size(), 31U);
    EXPECT_EQ(commands[1].size(), 31U);
    EXPECT_EQ(commands[2].size(), 1U);
    EXPECT_EQ(commands[2].front().address, (ElementAddress{'R', 62}));
}

TEST(WritePlan, AListIsNoLongerThanTheControllerTakes) {
    const std::vector<WordWrite> writes{integer("R1", 1), integer("R2", 2), integer("R3", 3)};
    EXPECT_EQ(told(planWordWrites(writes, 2)), "R1=1 R2=2 | R3=3");
    EXPECT_EQ(told(planWordWrites(writes, 1)), "R1=1 | R2=2 | R3=3");
}

TEST(WritePlan, TheLaterOfTwoWritesToOneElementComesLater) {
    EXPECT_EQ(told(planWordWrites({integer("R2", 1), integer("R1", 2), integer("R1", 3), integer("R3", 4)})),
              "R1=2 R2=1 | R1=3 | R3=4");
}

TEST(WritePlan, NothingToWriteIsNoCommand) {
    EXPECT_TRUE(planWordWrites({}).empty());
}

} // namespace
} // namespace host
