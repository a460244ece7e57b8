#include "Printers.h"

#include <CommandCode.h>
#include <MediaTable.h>

#include <gtest/gtest.h>

#include <set>

using sbus::CommandClass;

namespace {

struct Row {
    quint32 command;
    CommandClass commandClass;
    const char* media; // of a read; empty for the others
};

const Row rows[] = {
    {0, CommandClass::ReadWords, "C"},  {2, CommandClass::ReadBits, "F"},
    {3, CommandClass::ReadBits, "I"},   {5, CommandClass::ReadBits, "O"},
    {6, CommandClass::ReadWords, "R"},  {7, CommandClass::ReadWords, "T"},
    {10, CommandClass::WriteWords, ""}, {11, CommandClass::WriteBits, ""},
    {12, CommandClass::WriteClock, ""}, {13, CommandClass::WriteBits, ""},
    {14, CommandClass::WriteWords, ""}, {15, CommandClass::WriteWords, ""},
};

} // namespace

TEST(CommandCode, EachCodeHasItsClass) {
    for (const Row& row : rows)
        EXPECT_EQ(sbus::classOf(row.command), row.commandClass) << row.command;
}

TEST(CommandCode, EveryOtherCodeHasNoTelegram) {
    std::set<quint32> known;
    for (const Row& row : rows)
        known.insert(row.command);
    for (quint32 command = 0; command <= 300; ++command)
        EXPECT_EQ(sbus::classOf(command) == CommandClass::None, known.count(command) == 0) << command;
    EXPECT_EQ(sbus::classOf(0xFFFFFFFFu), CommandClass::None);
}

TEST(CommandCode, OnlyTheSixReadCodesAreReads) {
    const std::set<quint32> reads = {0, 2, 3, 5, 6, 7};
    for (quint32 command = 0; command <= 300; ++command)
        EXPECT_EQ(sbus::isRead(command), reads.count(command) == 1) << command;
}

TEST(CommandCode, TheAnswerToEachReadIsPublishedUnderItsMediaLetter) {
    for (const Row& row : rows)
        EXPECT_EQ(sbus::mediaForReadCommand(row.command), QString(row.media)) << row.command;
    EXPECT_EQ(sbus::mediaForReadCommand(1), QString());
}

TEST(CommandCode, TheNamedCodesAreTheNumbersOnTheWire) {
    using sbus::CommandCode;
    EXPECT_EQ(sbus::toNumber(CommandCode::ReadCounters), 0u);
    EXPECT_EQ(sbus::toNumber(CommandCode::ReadFlags), 2u);
    EXPECT_EQ(sbus::toNumber(CommandCode::ReadInputs), 3u);
    EXPECT_EQ(sbus::toNumber(CommandCode::ReadOutputs), 5u);
    EXPECT_EQ(sbus::toNumber(CommandCode::ReadRegisters), 6u);
    EXPECT_EQ(sbus::toNumber(CommandCode::ReadTimers), 7u);
    EXPECT_EQ(sbus::toNumber(CommandCode::WriteCounters), 10u);
    EXPECT_EQ(sbus::toNumber(CommandCode::WriteFlags), 11u);
    EXPECT_EQ(sbus::toNumber(CommandCode::WriteClock), 12u);
    EXPECT_EQ(sbus::toNumber(CommandCode::WriteOutputs), 13u);
    EXPECT_EQ(sbus::toNumber(CommandCode::WriteRegisters), 14u);
    EXPECT_EQ(sbus::toNumber(CommandCode::WriteTimers), 15u);
}
