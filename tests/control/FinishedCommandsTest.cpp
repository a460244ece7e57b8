#include "services/control/FinishedCommands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Halvex::DriverErrorResult;
using host::FinishedCommands;

namespace {

// Of a host whose RTU 7 of channel 4 has refused the last telegram that it answered.
class FinishedCommandsTest : public testing::Test {
protected:
    bool isRefusal(DriverErrorResult result, int rtuId = 7) {
        finished.add(1, 0, result, {4, rtuId, host::SwitchPoint{1, true}});
        const std::vector<FinishedCommands::Entry> entries = finished.take();
        EXPECT_EQ(entries.size(), 1U);
        return !entries.empty() && entries[0].outcome.isRefusedByController;
    }

    int wakes = 0;
    FinishedCommands finished{[this] { ++wakes; },
                              [](int channelId, int rtuId) { return channelId == 4 && rtuId == 7; }};
};

} // namespace

TEST_F(FinishedCommandsTest, ACommandThatFailedByARefusalIsTheControllersRefusal) {
    EXPECT_TRUE(isRefusal(DriverErrorResult::BadData));
    EXPECT_FALSE(isRefusal(DriverErrorResult::BadData, 8));
}

// The refusal was that of an earlier telegram.
TEST_F(FinishedCommandsTest, ACommandThatMetADeadLineWasNotRefused) {
    EXPECT_FALSE(isRefusal(DriverErrorResult::ChannelError));
}

TEST_F(FinishedCommandsTest, ACommandThatSucceededWasNotRefused) {
    EXPECT_FALSE(isRefusal(DriverErrorResult::Success));
}

TEST_F(FinishedCommandsTest, TheReaderIsWokenOnceForAllThatItHasNotTaken) {
    const host::Command command{4, 7, host::SwitchPoint{1, true}};
    finished.add(1, 0, DriverErrorResult::Success, command);
    finished.add(1, 1, DriverErrorResult::TimeOut, command);
    EXPECT_EQ(wakes, 1);
    const std::vector<FinishedCommands::Entry> entries = finished.take();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[1].ticket, 1U);
    EXPECT_EQ(entries[1].index, 1U);
    EXPECT_EQ(entries[1].outcome.result, DriverErrorResult::TimeOut);
    finished.add(2, 0, DriverErrorResult::Success, command);
    EXPECT_EQ(wakes, 2);
}

TEST_F(FinishedCommandsTest, NobodyIsWokenOrAskedOnceItIsClosed) {
    finished.close();
    finished.add(1, 0, DriverErrorResult::BadData, {4, 7, host::SwitchPoint{1, true}});
    EXPECT_EQ(wakes, 0);
    EXPECT_TRUE(finished.take().empty());
}
