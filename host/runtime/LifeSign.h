#pragma once

#include <atomic>
#include <chrono>

namespace host {

// When the thread of a line last moved: took a turn of its loop, opened its link, sent or received. That
// thread gives the sign; any may look.
class LifeSign {
public:
    using Clock = std::chrono::steady_clock;

    void give(Clock::time_point now) { last.store(now, std::memory_order_relaxed); }
    // The clock's beginning when none was ever given.
    Clock::time_point lastGiven() const { return last.load(std::memory_order_relaxed); }

private:
    std::atomic<Clock::time_point> last{Clock::time_point()};
};

} // namespace host
