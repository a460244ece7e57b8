#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <vector>

// Takes what is published, like a host that looks at nothing but how much and when. Any thread.
class CountingCore final : public HalvexDriverCoreInterface {
public:
    using Clock = std::chrono::steady_clock;

    void publishPoints(int, int, const QVector<PointUpdate>& updates) override {
        valueCount.fetch_add(static_cast<std::size_t>(updates.size()), std::memory_order_relaxed);
    }
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    // Once for each request that has ended.
    void publishChannelStatus(int, const ChannelStatus&) override {
        if (!keepsTimes)
            return;
        const std::lock_guard<std::mutex> lock(mutex);
        ends.push_back(Clock::now());
    }

    // Before anything is published.
    void keepTimes() { keepsTimes = true; }

    std::size_t values() const { return valueCount.load(std::memory_order_relaxed); }
    std::vector<Clock::time_point> requestEnds() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return ends;
    }

private:
    std::atomic<std::size_t> valueCount{0};
    bool keepsTimes = false;
    mutable std::mutex mutex;
    std::vector<Clock::time_point> ends;
};
