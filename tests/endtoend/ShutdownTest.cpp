#include "EveryLine.h"
#include "Sanitized.h"

#include <chrono>

using Shutdown = EveryLine;

ON_EVERY_LINE(Shutdown);

namespace {

constexpr int sessionTimeOutMs = 1500;

// What the interrupt takes to have effect, and what a busy machine adds.
constexpr int slackMs = isSanitized ? 1'000 : 200;

void expectTimelyStop(Plant& plant, int allowedMs = sessionTimeOutMs) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    EXPECT_TRUE(plant.stop());
    EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(allowedMs + slackMs));
}

void addRegisters(Plant& plant, unsigned count) {
    plant.setSessionTimeOut(sessionTimeOutMs);
    for (unsigned i = 0; i < count; ++i)
        plant.addAnalogPoint(5, i, QStringLiteral("R%1").arg(i));
}

} // namespace

TEST_P(Shutdown, WhileTheLineCannotBeOpened) {
    Plant plant(GetParam(), {5});
    addRegisters(plant, 1);
    plant.leaveLineDead();
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] {
        const ChannelStatus status = plant.channel().GetChannelStatus();
        return status.failedOpens + status.channelErrors > 0;
    }));
    expectTimelyStop(plant);
}

// Between two tries to open its line a channel sleeps for a second, whatever the session time-out is.
TEST_P(Shutdown, WhileTheLineCannotBeOpenedWithAShortTimeOut) {
    constexpr int retryMs = 1000;
    Plant plant(GetParam(), {5});
    addRegisters(plant, 1);
    plant.setSessionTimeOut(300);
    plant.leaveLineDead();
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] {
        const ChannelStatus status = plant.channel().GetChannelStatus();
        return status.failedOpens + status.channelErrors > 0;
    }));
    expectTimelyStop(plant, retryMs);
}

TEST_P(Shutdown, WhileConnectedAndPolling) {
    Plant plant(GetParam(), {5});
    addRegisters(plant, 100);
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return plant.allPointsAre(5, PointQuality::Good); }));
    expectTimelyStop(plant);
}

TEST_P(Shutdown, WhileAControllerKeepsTheLineWaiting) {
    Plant plant(GetParam(), {5});
    addRegisters(plant, 1);
    plant.controllers().silence(Plant::lineId, 5, true);
    plant.start();
    ASSERT_TRUE(Plant::eventually(
        [&] { return plant.controllers().counts(Plant::lineId).stations.at(5).unanswered > 0; }));
    expectTimelyStop(plant);
}

TEST_P(Shutdown, InTheMiddleOfALongPoll) {
    sim::Options slow;
    slow.faults.late = 1;
    slow.faults.lateBy = std::chrono::milliseconds(400);
    Plant plant(GetParam(), {5}, slow);
    addRegisters(plant, 2000);
    plant.start();
    ASSERT_TRUE(Plant::eventually(
        [&] { return plant.controllers().counts(Plant::lineId).stations.at(5).answers > 1; }));
    expectTimelyStop(plant);
}

TEST_P(Shutdown, WhileALineIsDrainedAfterAWrongChecksum) {
    sim::Options spoilt;
    spoilt.faults.crc = 1;
    Plant plant(GetParam(), {5}, spoilt);
    addRegisters(plant, 1);
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return plant.controllers().counts(Plant::lineId).faults.crc > 0; }));
    expectTimelyStop(plant);
}

TEST_P(Shutdown, BeforeTheThreadHasBegun) {
    Plant plant(GetParam(), {5});
    addRegisters(plant, 1);
    plant.start();
    expectTimelyStop(plant);
}
