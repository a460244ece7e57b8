#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <shared_mutex>
#include <vector>

// The core that a driver is given where several want to hear of values and states. Passes each call on to all
// listeners, in the order in which they were added. Any thread; a listener must not add or remove one.
class CoreFanOut : public HalvexDriverCoreInterface {
public:
    CoreFanOut() = default;
    explicit CoreFanOut(HalvexDriverCoreInterface& first) { add(first); }

    void add(HalvexDriverCoreInterface& listener);
    // On return it is not called any more.
    void remove(HalvexDriverCoreInterface& listener);

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int channelId, const ChannelStatus& status) override;

private:
    std::shared_mutex mutex; // guards the list; shared while listeners are called
    std::vector<HalvexDriverCoreInterface*> listeners;
};
