#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <vector>

// Takes what is published, like a host that looks at nothing but how much comes and when. Any thread.
class CountingCore final : public HalvexDriverCoreInterface {
public:
    using Clock = std::chrono::steady_clock;

    void publishPoints(int, int, const QVector<PointUpdate>& updates) override {
        if (updates.first().quality != PointQuality::Good)
            return; // values that have turned bad, none that were read
        valueCount.fetch_add(static_cast<std::size_t>(updates.size()), std::memory_order_relaxed);
        if (!keepsTimes)
            return;
        const std::lock_guard<std::mutex> lock(mutex);
        times.push_back(Clock::now());
    }
    void publishRtuStatus(int, int, const RtuStatus& status) override {
        if (status.timeOuts + status.errors > 0)
            failed.store(true, std::memory_order_relaxed);
    }
    void publishChannelStatus(int, const ChannelStatus&) override {}

    // Before anything is published.
    void keepTimes() { keepsTimes = true; }

    std::size_t values() const { return valueCount.load(std::memory_order_relaxed); }
    // Whether any request has failed.
    bool hasFailures() const { return failed.load(std::memory_order_relaxed); }
    // When values were published.
    std::vector<Clock::time_point> publications() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return times;
    }

private:
    std::atomic<std::size_t> valueCount{0};
    std::atomic<bool> failed{false};
    bool keepsTimes = false;
    mutable std::mutex mutex;
    std::vector<Clock::time_point> times;
};
