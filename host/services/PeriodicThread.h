#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace host {

// Calls a function over and over on a thread of its own, with a pause in between.
// States: made, running (after start), stopped (after stop, for good). Start and stop on one thread.
class PeriodicThread {
public:
    PeriodicThread() = default;
    PeriodicThread(const PeriodicThread&) = delete;
    PeriodicThread& operator=(const PeriodicThread&) = delete;
    ~PeriodicThread();

    // The first turn comes at once. Throws ThreadRefused; `purpose` is what its message says it was for.
    void start(const std::string& purpose, std::chrono::milliseconds pause, std::function<void()> turn);
    // Ends a pause at once and waits for a turn in progress. Nothing when it was never started.
    void stop();
    bool isRunning() const { return thread.joinable(); }

private:
    void run(std::chrono::milliseconds pause, const std::function<void()>& turn);

    std::mutex mutex; // guards the flag
    std::condition_variable stopped;
    bool isStopping = false;
    std::thread thread; // last: it works on all of the above
};

} // namespace host
