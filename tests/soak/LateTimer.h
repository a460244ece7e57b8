#pragma once

#include <atomic>
#include <chrono>
#include <thread>

// How busy the machine is: while it lives, a thread of its own sleeps for 10 ms again and again and notes how
// late it wakes. What no thread of this process could have done in time is no fault of the one under test.
class LateTimer {
public:
    using Clock = std::chrono::steady_clock;

    LateTimer();
    LateTimer(const LateTimer&) = delete;
    LateTimer& operator=(const LateTimer&) = delete;
    ~LateTimer();

    // So far.
    Clock::duration latest() const { return Clock::duration(worst.load()); }

private:
    void run();

    std::atomic<bool> isOver{false};
    std::atomic<Clock::rep> worst{0};
    std::thread thread;
};
