#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <QList>
#include <QMutex>

#include <optional>

// A host core that remembers what it was told. Any thread.
class RecordingCore : public HalvexDriverCoreInterface {
public:
    struct Publication {
        int channelId;
        int rtuId;
        QVector<PointUpdate> updates;
    };

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int channelId, const ChannelStatus& status) override;

    QList<Publication> publications() const;
    // The newest state of a point, if it was ever published.
    std::optional<PointUpdate> point(int channelId, int rtuId, unsigned number) const;
    int rtuStatusCount() const;
    int channelStatusCount() const;
    void clear();

private:
    mutable QMutex mutex;
    QList<Publication> published;
    int rtuStatuses = 0;
    int channelStatuses = 0;
};
