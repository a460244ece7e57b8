#include "Soak.h"
#include "WatchedHost.h"

#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>

// The host runs with a wall clock that the test sets.

using namespace soak;
using namespace std::chrono_literals;

namespace {

class MovedClock : public testing::Test {
protected:
    MovedClock() {
        EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(sizeof(Offset)));
        offset = reinterpret_cast<Offset*>(file.map(0, sizeof(Offset)));
    }

    QProcessEnvironment preloaded() const {
        QProcessEnvironment more;
        more.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(MOVED_CLOCK_LIBRARY));
        more.insert(QStringLiteral("SBUS_MOVED_CLOCK"), file.fileName());
        // The address sanitizer wants to be the first of all libraries.
        more.insert(QStringLiteral("ASAN_OPTIONS"),
                    qEnvironmentVariable("ASAN_OPTIONS") + QStringLiteral(":verify_asan_link_order=0"));
        return more;
    }

    void moveClock(std::chrono::nanoseconds step) { offset->fetch_add(step.count()); }

private:
    using Offset = std::atomic<std::int64_t>; // nanoseconds

    const QTemporaryDir folder;
    QFile file{folder.filePath(QStringLiteral("offset"))};
    Offset* offset = nullptr; // in the file
};

Clock::duration longestGap(const std::vector<Clock::time_point>& times) {
    Clock::duration longest{};
    for (std::size_t i = 1; i < times.size(); ++i)
        longest = std::max(longest, times[i] - times[i - 1]);
    return longest;
}

std::string inMs(Clock::duration time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()) + " ms";
}

} // namespace

TEST_F(MovedClock, ChangesNoScanAndLosesNoPulse) {
    WatchedHost::Periods periods;
    periods.scan = 300ms;
    periods.pulse = 1s;
    WatchedHost host(periods, preloaded());
    host.start();
    const Clock::time_point begin = Clock::now();
    const std::size_t rounds = count(2U, 20U);
    for (std::size_t round = 0; round < rounds; ++round) {
        std::size_t wanted = 2 * round;
        for (const std::chrono::hours step : {-1h, 24h}) {
            ASSERT_TRUE(host.write("pump-house/P1_START=on"));
            // In another phase of the pulse and of the scans each time.
            std::this_thread::sleep_for(round * 40ms);
            moveClock(step);
            ++wanted;
            ASSERT_TRUE(Plant::eventually([&] { return host.pulses().size() == wanted; }));
        }
        host.expectFresh();
    }
    const Clock::duration passed = Clock::now() - begin;
    const auto status = host.polls(WatchedHost::Scan::Status, begin);
    const auto analog = host.polls(WatchedHost::Scan::Analog, begin);
    host.stop();

    const auto due = static_cast<std::size_t>(passed / periods.scan);
    for (const std::size_t polls : {status.size(), analog.size()}) {
        EXPECT_LE(polls, due + 1);
        EXPECT_GE(polls + due / 5 + 2, due); // a busy machine leaves a few out
    }
    Clock::duration shortest = 1h;
    Clock::duration longest{};
    for (const WatchedHost::Pulse& pulse : host.pulses()) {
        EXPECT_TRUE(pulse.isReleased);
        // From the command on; a busy machine sends its telegram later.
        EXPECT_GE(pulse.width, periods.pulse / 2);
        shortest = std::min<Clock::duration>(shortest, pulse.width);
        longest = std::max<Clock::duration>(longest, pulse.width);
    }
    tellFigures(std::to_string(2 * rounds) + " pulses of 1000 ms on for " + inMs(shortest) + " to " +
                inMs(longest) + ", " + std::to_string(status.size()) + " status and " +
                std::to_string(analog.size()) + " analog polls of " + std::to_string(due) +
                " due, longest gap " + inMs(std::max(longestGap(status), longestGap(analog))));
}
