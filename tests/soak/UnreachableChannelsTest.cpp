#include "Plant.h"
#include "ProcessFigures.h"
#include "RunningSite.h"
#include "Sanitized.h"
#include "Soak.h"
#include "UdpController.h"

#include <gtest/gtest.h>

#include <thread>

using namespace soak;
using namespace std::chrono_literals;

namespace {

host::Channel unreachable(int id, const host::LinkEnd& end) {
    host::Point point;
    point.id = 1;
    point.name = "LEVEL";
    point.kind = host::PointKind::Analog;
    host::Rtu rtu;
    rtu.id = 1;
    rtu.name = "tank";
    rtu.station = 1;
    rtu.points = {point};
    host::Channel channel;
    channel.id = id;
    channel.name = "line " + std::to_string(id);
    channel.primary = end;
    channel.type =
        std::holds_alternative<host::SerialEnd>(end) ? host::LineType::Serial : host::LineType::Ethernet;
    channel.rtus = {rtu};
    return channel;
}

bool haveAllTried(RunningSite& running) {
    const std::vector<host::ChannelFigures> figures = running.hostRuntime().channelFigures();
    return std::all_of(figures.begin(), figures.end(), [](const host::ChannelFigures& channel) {
        return channel.status.failedOpens + channel.status.channelErrors > 0;
    });
}

// The processor time is that of a program as it is shipped.
constexpr double allowedShare = isSanitized ? 1.0 : 0.1;

} // namespace

TEST(UnreachableChannels, TwoHundredLeaveNineTenthsOfACoreFree) {
    RunningSite running;
    const std::uint16_t port = unusedUdpPort();
    for (int id = 1; id <= 200; ++id)
        running.site().channels.push_back(
            id % 2 == 0 ? unreachable(id, host::UdpEnd{"127.0.0.1", port})
                        : unreachable(id, host::SerialEnd{"/nowhere/line" + std::to_string(id)}));
    running.start(PLUGIN_FILE);
    ASSERT_TRUE(Plant::eventually([&] { return haveAllTried(running); }));

    const auto begin = std::chrono::steady_clock::now();
    const auto usedBefore = processProcessorTime();
    std::this_thread::sleep_for(count(4s, 60s));
    const double used = std::chrono::duration<double>(processProcessorTime() - usedBefore).count();
    const double passed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_LT(used / passed, allowedShare);
    tellFigures(std::to_string(used / passed * 100) + "% of one core over " + std::to_string(passed) + " s");
    EXPECT_EQ(running.hostRuntime().channelFigures().size(), 200U);
}
