#pragma once

#include <cstdint>
#include <functional>

// Time that passes only when it is told to. In a program that links this, std::chrono::steady_clock,
// QElapsedTimer and QDateTime show it, and a sleep becomes a call: so an exchange that waits for seconds
// costs no more than its instructions. One thread.
namespace steppedTime {

// The wall clock stands a second before midnight then, so that a day ends in most runs.
void restart();
std::int64_t nowMs();
void pass(std::int64_t ms);

// While it lives, a sleep of this thread calls `sleeper` with its milliseconds and ends at once.
class Sleepless {
public:
    explicit Sleepless(std::function<void(std::int64_t)> sleeper);
    ~Sleepless();
    Sleepless(const Sleepless&) = delete;
    Sleepless& operator=(const Sleepless&) = delete;
};

} // namespace steppedTime
