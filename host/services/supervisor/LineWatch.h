#pragma once

#include "runtime/HostRuntime.h"

#include <chrono>
#include <vector>

namespace host {

// Judges by the figures of a site whether its lines are at work. Pure.
class LineWatch {
public:
    using Clock = LifeSign::Clock;

    // `patience`: how long the thread of a line may give no sign of life, beside the waits that are its own.
    LineWatch(Clock::time_point startOfSite, std::chrono::milliseconds patience)
        : start(startOfSite), patienceWithThreads(patience) {}

    // The lines whose threads stand still.
    std::vector<const Channel*> stuckLines(const SiteFigures& figures, Clock::time_point now) const;

    // How long the thread of a line may wait, at most, without a sign: for an answer or for a host's name.
    static std::chrono::milliseconds longestWait(const Channel& channel);

private:
    const Clock::time_point start;
    const std::chrono::milliseconds patienceWithThreads;
};

} // namespace host
