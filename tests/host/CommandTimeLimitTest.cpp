#include "plan/CommandTimeLimit.h"

#include "SmallSite.h"

#include <gtest/gtest.h>

using host::commandTimeLimit;
using std::chrono::milliseconds;

// Of 15 s for a disturbed line, the integrity poll's 2 telegrams of 200 ms with the driver's rest of 10 ms,
// and 200 ms of the command's own.
TEST(CommandTimeLimit, CoversTheLongestRequestBeforeTheCommandAndItsOwnAnswer) {
    EXPECT_EQ(commandTimeLimit(smallSite().channels[0]), milliseconds(15'000 + 2 * 200 + 10 + 200));
}

TEST(CommandTimeLimit, IsThatOfTheSlowestRtuOfTheLine) {
    host::Channel line = smallSite().channels[0];
    host::Rtu slow = line.rtus[0];
    slow.id = 8;
    slow.timeout = milliseconds(3'000);
    line.rtus.push_back(slow);
    EXPECT_EQ(commandTimeLimit(line), milliseconds(15'000 + 2 * 3'000 + 10 + 3'000));
    line.rtus[1].enabled = false;
    EXPECT_EQ(commandTimeLimit(line), milliseconds(15'000 + 2 * 200 + 10 + 200));
}

TEST(CommandTimeLimit, CountsTheWayOfTheBytesOnASerialLine) {
    host::Channel line = smallSite().channels[0];
    line.type = host::LineType::Serial;
    host::SerialEnd end;
    end.baud = 110;
    line.primary = end;
    host::Channel fast = line;
    std::get<host::SerialEnd>(fast.primary).baud = 115'200;
    EXPECT_GT(commandTimeLimit(line), commandTimeLimit(fast) + milliseconds(1'000));
}
