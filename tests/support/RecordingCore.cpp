#include "RecordingCore.h"

#include <QMutexLocker>

void RecordingCore::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    const QMutexLocker lock(&mutex);
    published << Publication{channelId, rtuId, updates};
}

void RecordingCore::publishRtuStatus(int, int, const RtuStatus&) {
    const QMutexLocker lock(&mutex);
    ++rtuStatuses;
}

void RecordingCore::publishChannelStatus(int, const ChannelStatus&) {
    const QMutexLocker lock(&mutex);
    ++channelStatuses;
}

QList<RecordingCore::Publication> RecordingCore::publications() const {
    const QMutexLocker lock(&mutex);
    return published;
}

std::optional<PointUpdate> RecordingCore::point(int channelId, int rtuId, unsigned number) const {
    const QMutexLocker lock(&mutex);
    for (auto publication = published.crbegin(); publication != published.crend(); ++publication) {
        if (publication->channelId != channelId || publication->rtuId != rtuId)
            continue;
        for (auto update = publication->updates.crbegin(); update != publication->updates.crend(); ++update)
            if (update->number == number)
                return *update;
    }
    return std::nullopt;
}

int RecordingCore::rtuStatusCount() const {
    const QMutexLocker lock(&mutex);
    return rtuStatuses;
}

int RecordingCore::channelStatusCount() const {
    const QMutexLocker lock(&mutex);
    return channelStatuses;
}

void RecordingCore::clear() {
    const QMutexLocker lock(&mutex);
    published.clear();
    rtuStatuses = 0;
    channelStatuses = 0;
}
