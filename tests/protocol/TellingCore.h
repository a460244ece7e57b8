#pragma once

#include "RecordingCore.h"

#include <functional>

// A core that lets the test look around at the moment at which something is told.
class TellingCore : public RecordingCore {
public:
    std::function<void()> onPoints = [] {};
    std::function<void(const RtuStatus&)> onRtuStatus = [](const RtuStatus&) {};
    std::function<void()> onChannelStatus = [] {};

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override {
        RecordingCore::publishPoints(channelId, rtuId, updates);
        onPoints();
    }
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override {
        RecordingCore::publishRtuStatus(channelId, rtuId, status);
        onRtuStatus(status);
    }
    void publishChannelStatus(int channelId, const ChannelStatus& status) override {
        RecordingCore::publishChannelStatus(channelId, status);
        onChannelStatus();
    }
};
