#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <utility>

namespace soak {

// How old the values of each RTU grow until good ones take their place. Of one channel. Any thread.
class GoodValueAges : public HalvexDriverCoreInterface {
public:
    // What was before does not count.
    void begin() {
        const std::lock_guard<std::mutex> lock(mutex);
        const Clock::time_point now = Clock::now();
        for (auto& [rtu, ages] : rtus) {
            ages.oldest = {};
            ages.since = now;
        }
    }

    // The greatest age of any value up to now, but for those of one RTU.
    std::chrono::milliseconds oldestBesides(int rtuId) const {
        const std::lock_guard<std::mutex> lock(mutex);
        Clock::duration oldest{};
        for (const auto& [rtu, ages] : rtus)
            if (rtu.first != rtuId)
                oldest = std::max({oldest, ages.oldest, Clock::now() - ages.since});
        return std::chrono::duration_cast<std::chrono::milliseconds>(oldest);
    }

    void publishPoints(int, int rtuId, const QVector<PointUpdate>& updates) override {
        const std::lock_guard<std::mutex> lock(mutex);
        const Clock::time_point now = Clock::now();
        for (const bool analog : {false, true}) {
            const auto isGood = [analog](const PointUpdate& update) {
                return update.analog == analog && update.quality == PointQuality::Good;
            };
            if (std::none_of(updates.begin(), updates.end(), isGood))
                continue;
            Ages& ages = rtus.try_emplace({rtuId, analog}, Ages{now, {}}).first->second;
            ages.oldest = std::max(ages.oldest, now - ages.since);
            ages.since = now;
        }
    }
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}

private:
    using Clock = std::chrono::steady_clock;

    struct Ages {
        Clock::time_point since; // the last good values came
        Clock::duration oldest{};
    };

    mutable std::mutex mutex;
    std::map<std::pair<int, bool>, Ages> rtus; // by RTU, status and analog values apart
};

} // namespace soak
