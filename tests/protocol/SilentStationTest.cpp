#include "PtyPair.h"
#include "PublishingRtu.h"
#include "RecordingCore.h"
#include "TestChannel.h"

#include <SBusSerialDriver.h>

#include <HalvexDriverLink/CLinkSerial.h>

#include <gtest/gtest.h>

// A station that says nothing, on a real serial device: each of 1,000 exchanges must end as a time-out that
// leaves the channel up, and none as an answer that broke off.
class SilentStation : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(InEveryMode, SilentStation, testing::Values(0, 1));

TEST_P(SilentStation, IsATimeOutThatLeavesTheChannelUpAThousandTimes) {
    constexpr int timeOutMs = 3;
    PtyPair line;
    RecordingCore core;
    TestChannel channel(&core);
    CLinkSerial* const link = channel.take(std::make_unique<CLinkSerial>(SerialSettings{line.device()}));
    ASSERT_EQ(link->open(), 0);
    auto* const driver = new SBusSerialDriver(&channel);
    driver->transmitMode = GetParam();
    driver->breakDelay = 0;
    driver->setLink(link);
    SBusRequest poll;
    poll.rtu = channel.add<PublishingRtu>(stationRecord(3, "5", timeOutMs));
    poll.items = {{6, 9, 0, {}}};
    channel.SetConnect(true);

    for (unsigned tries = 1; tries <= 1000; ++tries) {
        driver->queueRequest(poll);
        driver->processNextRequest();
        ASSERT_TRUE(channel.IsConnect()) << tries;
        ASSERT_FALSE(poll.rtu->IsConnect()) << tries;
        ASSERT_EQ(poll.rtu->GetRtuStatus().timeOuts, tries);
        line.read(9 - 2 * GetParam());
    }
    EXPECT_EQ(channel.GetChannelStatus().channelErrors, 0U);
}
