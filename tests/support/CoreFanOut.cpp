#include "CoreFanOut.h"

#include <algorithm>
#include <mutex>

void CoreFanOut::add(HalvexDriverCoreInterface& listener) {
    const std::lock_guard<std::shared_mutex> lock(mutex);
    listeners.push_back(&listener);
}

void CoreFanOut::remove(HalvexDriverCoreInterface& listener) {
    const std::lock_guard<std::shared_mutex> lock(mutex);
    listeners.erase(std::remove(listeners.begin(), listeners.end(), &listener), listeners.end());
}

void CoreFanOut::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    const std::shared_lock<std::shared_mutex> lock(mutex);
    for (HalvexDriverCoreInterface* const listener : listeners)
        listener->publishPoints(channelId, rtuId, updates);
}

void CoreFanOut::publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) {
    const std::shared_lock<std::shared_mutex> lock(mutex);
    for (HalvexDriverCoreInterface* const listener : listeners)
        listener->publishRtuStatus(channelId, rtuId, status);
}

void CoreFanOut::publishChannelStatus(int channelId, const ChannelStatus& status) {
    const std::shared_lock<std::shared_mutex> lock(mutex);
    for (HalvexDriverCoreInterface* const listener : listeners)
        listener->publishChannelStatus(channelId, status);
}
