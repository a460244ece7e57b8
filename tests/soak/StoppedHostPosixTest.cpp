#include "Soak.h"
#include "WatchedHost.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace soak;
using namespace std::chrono_literals;

namespace {

// What a scan may ask for within `time`: what falls due then, once what fell due before, and the integrity
// poll of a line that was opened anew because it was stopped in the middle of an exchange.
std::size_t mostPolls(Clock::duration time, Clock::duration period) {
    return static_cast<std::size_t>(time / period) + 1 + 1 + 1;
}

} // namespace

TEST(StoppedHost, CatchesUpOnEachScanOnce) {
    WatchedHost::Periods periods;
    periods.scan = 500ms;
    WatchedHost host(periods);
    host.start();
    const auto process = static_cast<pid_t>(host.processId());
    const auto stoppedFor = count(4s, 30s);
    ASSERT_EQ(kill(process, SIGSTOP), 0);
    const std::unique_ptr<QProcess> command = host.beginWrite("pump-house/P1_START=on");
    std::this_thread::sleep_for(stoppedFor);
    const Clock::time_point continued = Clock::now();
    ASSERT_EQ(kill(process, SIGCONT), 0);
    host.expectFresh();
    const std::size_t untilFresh = host.polls(WatchedHost::Scan::Analog, continued).size();
    EXPECT_LE(untilFresh, 3U);
    EXPECT_TRUE(WatchedHost::endWrite(*command));
    EXPECT_TRUE(Plant::eventually([&] { return host.pulses().size() == 1; }));
    std::this_thread::sleep_for(2s);
    const std::size_t status = host.polls(WatchedHost::Scan::Status, continued).size();
    const std::size_t analog = host.polls(WatchedHost::Scan::Analog, continued).size();
    const Clock::duration passed = Clock::now() - continued;
    EXPECT_LE(status, mostPolls(passed, periods.scan));
    EXPECT_LE(analog, mostPolls(passed, periods.scan));
    host.stop();
    const auto passedMs = std::chrono::duration_cast<std::chrono::milliseconds>(passed).count();
    tellFigures("stopped for " + std::to_string(stoppedFor.count()) + " s, then in " +
                std::to_string(passedMs) + " ms of scans each 500 ms " + std::to_string(status) +
                " status polls and " + std::to_string(analog) + " analog polls, fresh after " +
                std::to_string(untilFresh));
}
