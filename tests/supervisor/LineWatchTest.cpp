#include "services/supervisor/LineWatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::LineWatch;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

const LineWatch::Clock::time_point start{1000s};

// Two lines with a controller each, time-outs 1 s and 5 s.
class LineWatchTest : public testing::Test {
protected:
    LineWatchTest() {
        pumps.primary = host::UdpEnd{"192.168.10.5", 5050};
        wells.primary = host::SerialEnd{"/dev/ttyS0"};
        for (host::Channel* const channel : {&pumps, &wells}) {
            channel->rtus.emplace_back().points.emplace_back();
            channel->rtus.front().breakDelayMs = 0;
            figures.channels.push_back({channel, {}, start});
            figures.rtus.emplace_back();
            figures.rtus.back().channel = channel;
            figures.rtus.back().rtu = &channel->rtus.front();
        }
        wells.rtus.front().timeout = 5s;
    }

    host::Channel pumps;
    host::Channel wells;
    host::SiteFigures figures;
};

} // namespace

TEST_F(LineWatchTest, AllowsEachLineItsOwnTimeOutBesideThePatience) {
    const LineWatch watch(start, 30s);
    EXPECT_THAT(watch.stuckLines(figures, start + 31s), IsEmpty());
    EXPECT_THAT(watch.stuckLines(figures, start + 31001ms), ElementsAre(&pumps));
    EXPECT_THAT(watch.stuckLines(figures, start + 35001ms), ElementsAre(&pumps, &wells));
}

TEST_F(LineWatchTest, CountsFromTheLastSignOfLife) {
    const LineWatch watch(start, 30s);
    figures.channels[0].lastSign = start + 10s;
    EXPECT_THAT(watch.stuckLines(figures, start + 36s), ElementsAre(&wells));
    EXPECT_THAT(watch.stuckLines(figures, start + 42s), ElementsAre(&pumps, &wells));
}

TEST_F(LineWatchTest, CountsFromTheStartWhileThereWasNoSign) {
    const LineWatch watch(start, 30s);
    figures.channels[0].lastSign = {};
    EXPECT_THAT(watch.stuckLines(figures, start + 30s), IsEmpty());
}

TEST_F(LineWatchTest, AllowsForTheLookUpOfAName) {
    EXPECT_EQ(LineWatch::longestWait(pumps), 1s);
    pumps.secondary = host::UdpEnd{"pump-house.plant", 5050};
    EXPECT_EQ(LineWatch::longestWait(pumps), 60s);
}

TEST_F(LineWatchTest, AllowsForTheBreakBeforeATelegram) {
    wells.rtus.front().breakDelayMs = 200;
    EXPECT_EQ(LineWatch::longestWait(wells), 5200ms);
}
