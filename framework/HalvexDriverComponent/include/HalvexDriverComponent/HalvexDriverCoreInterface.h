#pragma once

#include <HalvexDriverComponent/CMidTime.h>
#include <HalvexDriverComponent/Export.h>

#include <QVector>

#include <chrono>

enum class PointQuality {
    NeverRead,
    Good,
    Bad,     // the RTU is disconnected, or a poll of it has failed since the value was read
    Refused, // the controller does not give it; for hosts that find this out, RTUs do not tell it
};

struct PointUpdate {
    bool analog = false;
    unsigned number = 0;
    double value = 0; // the reading where the quality is good; else the last one, or 0
    CMidTime stamp;
    PointQuality quality = PointQuality::NeverRead;
};

struct RtuStatus {
    bool connected = false;
    quint64 requests = 0; // ended, whichever way
    quint64 answers = 0;
    quint64 timeOuts = 0;
    quint64 errors = 0;
    // From the start of a telegram to the last byte of its answer.
    std::chrono::microseconds lastRoundTrip{0};
    std::chrono::microseconds slowestRoundTrip{0};
};

struct ChannelStatus {
    bool connected = false;
    int whereLink = 0; // 0 primary, 1 secondary
    quint64 failedOpens = 0;
    quint64 channelErrors = 0;
    quint64 linkChanges = 0;
    quint64 scanOverruns = 0;
    qint64 failedMs = 0; // how long the channel has been without a connection, all in all
};

// What the host gives to its drivers: the place where values and states arrive. Called on the channel's
// thread, on the host's while a channel is closed, and on that of a command that is refused offline; an
// implementation takes its own lock, returns soon and does not call back into the RTU's values.
class HALVEXDRIVERCOMPONENT_EXPORT HalvexDriverCoreInterface {
public:
    virtual ~HalvexDriverCoreInterface();

    // The points of one RTU whose value or quality is new, together.
    virtual void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) = 0;
    virtual void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) = 0;
    virtual void publishChannelStatus(int channelId, const ChannelStatus& status) = 0;
};
