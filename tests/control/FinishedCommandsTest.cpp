#include "services/control/FinishedCommands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Halvex::DriverErrorResult;
using host::CommandEnd;
using host::FinishedCommands;

namespace {

class FinishedCommandsTest : public testing::Test {
protected:
    int wakes = 0;
    FinishedCommands finished{[this] { ++wakes; }};
};

} // namespace

TEST_F(FinishedCommandsTest, ARefusalComesWithTheEndOfItsCommand) {
    finished.add(1, 0, CommandEnd{DriverErrorResult::BadData, true, true});
    finished.add(1, 1, CommandEnd{DriverErrorResult::BadData});
    const std::vector<FinishedCommands::Entry> entries = finished.take();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_TRUE(entries[0].outcome.isRefusedByController);
    EXPECT_FALSE(entries[1].outcome.isRefusedByController);
}

TEST_F(FinishedCommandsTest, TheReaderIsWokenOnceForAllThatItHasNotTaken) {
    finished.add(1, 0, CommandEnd{DriverErrorResult::Success});
    finished.add(1, 1, CommandEnd{DriverErrorResult::TimeOut});
    EXPECT_EQ(wakes, 1);
    const std::vector<FinishedCommands::Entry> entries = finished.take();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[1].ticket, 1U);
    EXPECT_EQ(entries[1].index, 1U);
    EXPECT_EQ(entries[1].outcome.result, DriverErrorResult::TimeOut);
    finished.add(2, 0, CommandEnd{DriverErrorResult::Success});
    EXPECT_EQ(wakes, 2);
}

TEST_F(FinishedCommandsTest, NobodyIsWokenOnceItIsClosed) {
    finished.close();
    finished.add(1, 0, CommandEnd{DriverErrorResult::BadData});
    EXPECT_EQ(wakes, 0);
    EXPECT_TRUE(finished.take().empty());
}
