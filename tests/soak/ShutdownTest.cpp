// Sixty-four lines that end at once, each in another state.

#include "LateTimer.h"
#include "ManyLines.h"
#include "SlowNames.h"
#include "Soak.h"
#include "SystemUse.h"

#include <HalvexDriverComponent/CChannel.h>

#include <gtest/gtest.h>

#include <sstream>

using host::SwitchPoint;
using sim::Media;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

// What a line is in the middle of when the host ends.
enum class State {
    NeverOpened,   // the device is not there, the port is not served
    LookingUpName, // of an Ethernet line; a serial one is never opened
    Idle,
    Polling,
    MidExchange, // of a poll that is longer than the time-out
    DeadStation, // in the wait for an answer that does not come
    Draining,    // of a serial line after a wrong checksum; an Ethernet one goes on at once
    PulsePending,
};
constexpr State states[] = {State::NeverOpened, State::LookingUpName, State::Idle,     State::Polling,
                            State::MidExchange, State::DeadStation,   State::Draining, State::PulsePending};
constexpr int lineCount = 64;
constexpr unsigned pulsePoint = 5000;
constexpr auto mostRetry = 1000ms; // a line that cannot be opened sleeps as long between two tries
constexpr auto interruptTime = 200ms;

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

// Three kinds of lines and eight states, so every pair comes up.
State stateOf(int line) {
    return states[static_cast<std::size_t>(line) % std::size(states)];
}

void prepare(ManyLines& plant, int line) {
    host::Rtu& rtu = plant.rtu(line);
    rtu.timeout = std::chrono::milliseconds(300 + 10 * line);
    plant.addRegisters(line, stateOf(line) == State::MidExchange ? 2000 : 10);
    plant.addPoint(line, pulsePoint, {'O', 32}).pulseMs = 600'000;
    if (stateOf(line) != State::Polling)
        plant.pollSeldom(line);
    if (stateOf(line) == State::LookingUpName && plant.type(line) == LineType::Ethernet)
        plant.line(line).primary = host::UdpEnd{slowName, 1};
}

// Before the host starts: what its lines will meet.
void disturb(ManyLines& plant, int line) {
    sim::Faults faults;
    switch (stateOf(line)) {
    case State::NeverOpened:
        plant.controllers().cut(line);
        break;
    case State::LookingUpName:
        if (plant.type(line) != LineType::Ethernet)
            plant.controllers().cut(line);
        break;
    case State::MidExchange:
        faults.late = 1;
        faults.lateBy = 150ms;
        break;
    case State::DeadStation:
        plant.controllers().silence(line, ManyLines::station, true);
        break;
    case State::Draining:
        faults.crc = 1;
        break;
    case State::Idle:
    case State::Polling:
    case State::PulsePending:
        break;
    }
    plant.controllers().setFaults(line, faults);
}

bool isThere(ManyLines& plant, int line, std::uint64_t telegramsBefore) {
    const ChannelStatus status = plant.status(line);
    switch (stateOf(line)) {
    case State::NeverOpened:
        return status.failedOpens + status.channelErrors > 0;
    case State::LookingUpName:
        return plant.type(line) == LineType::Ethernet ? lookupsInProgress() > 0 : status.failedOpens > 0;
    case State::Idle:
    case State::Polling:
        return plant.reads(line, 0, 0);
    case State::MidExchange:
    case State::DeadStation:
    case State::Draining:
        return plant.controllers().counts(line).telegrams > telegramsBefore;
    case State::PulsePending:
        return plant.memory(line).get(Media::Outputs, 32) == 1;
    }
    return false;
}

class SixtyFourLines {
public:
    SixtyFourLines() : plant(ManyLines::mixed(lineCount)) {
        for (int line = 1; line <= lineCount; ++line) {
            prepare(plant, line);
            disturb(plant, line);
        }
    }

    // Returns when every line is in its state, or at once.
    void start(bool waits) {
        std::vector<std::uint64_t> telegrams;
        for (int line = 1; line <= lineCount; ++line) {
            telegrams.push_back(plant.controllers().counts(line).telegrams);
            plant.memory(line).set(Media::Outputs, 32, 0);
        }
        plant.start();
        for (int line = 1; line <= lineCount && waits; ++line) {
            const auto before = telegrams[static_cast<std::size_t>(line - 1)];
            if (stateOf(line) == State::PulsePending)
                submitPulse(line);
            EXPECT_TRUE(Plant::eventually([&] { return isThere(plant, line, before); }))
                << "line " << line << ", state " << static_cast<int>(stateOf(line));
        }
    }

    // How long each line took.
    std::vector<Clock::duration> stop() {
        std::vector<Clock::duration> took(lineCount);
        const Clock::time_point begin = Clock::now();
        for (int line = 1; line <= lineCount; ++line) {
            Clock::duration& own = took[static_cast<std::size_t>(line - 1)];
            QObject::connect(
                &plant.channel(line), &QThread::finished, &plant.channel(line),
                [&own, begin] { own = Clock::now() - begin; }, Qt::DirectConnection);
        }
        plant.stop();
        return took;
    }

    Clock::duration allowed(int line) {
        const bool isRetrying = stateOf(line) == State::NeverOpened || stateOf(line) == State::LookingUpName;
        const auto timeOut = plant.rtu(line).timeout;
        return (isRetrying ? std::max(timeOut, mostRetry) : timeOut) + interruptTime;
    }

    ManyLines plant;
    std::atomic<unsigned> given{0};
    std::atomic<unsigned> results{0};

private:
    void submitPulse(int line) {
        const host::Command on = ManyLines::command(line, SwitchPoint{pulsePoint, true});
        ++given;
        EXPECT_EQ(plant.commands().submit(on, [this](const host::CommandEnd&) { ++results; }), "");
    }
};

} // namespace

// A stop takes a few threads that run one after the other: the host's, which interrupts the line; the line's,
// which wakes, fails its request and sleeps once more; each may be late.
TEST(Shutdown, EveryLineEndsWithinItsTimeOutWhateverItIsDoing) {
    constexpr int threadsInTurn = 4;
    const int rounds = soak::count(4, 100);
    SixtyFourLines lines;
    Clock::duration longestOver = -1h;
    Clock::duration latestTimer{};
    SystemUse before;
    for (int round = 0; round < rounds; ++round) {
        letLookupsWait(true);
        lines.start(round % 4 != 3); // now and then the end comes before anything has begun
        const LateTimer control;
        const std::vector<Clock::duration> took = lines.stop();
        latestTimer = std::max(latestTimer, control.latest());
        for (int line = 1; line <= lineCount; ++line) {
            const Clock::duration over = took[static_cast<std::size_t>(line - 1)] - lines.allowed(line);
            longestOver = std::max(longestOver, over);
            EXPECT_LE(over, threadsInTurn * control.latest())
                << "round " << round << ", line " << line << ", state " << static_cast<int>(stateOf(line));
        }
        letLookupsWait(false);
        ASSERT_TRUE(Plant::eventually([] { return lookupsInProgress() == 0; }));
        if (round == rounds / 10) // what is made once is there
            before = SystemUse::now();
    }
    EXPECT_EQ(lines.results, lines.given);
    expectNoMoreThan(before);
    std::ostringstream figures;
    figures << rounds << " stops of " << lineCount << " lines; the latest line " << milliseconds(longestOver)
            << " ms from its bound; a timer of 10 ms up to " << milliseconds(latestTimer) << " ms late";
    soak::tellFigures(figures.str());
}
