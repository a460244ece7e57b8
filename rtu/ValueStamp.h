#pragma once

#include <HalvexDriverComponent/CMidTime.h>

// The time stamp of each value that is put. It holds milliseconds, and hundreds of values are put in one: so
// it is made anew only when the millisecond is a new one. In UTC, since a stamp knows no zone, and to ask the
// system for its own takes ten times as long. One thread.
class ValueStamp {
public:
    const CMidTime& now() {
        const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
        if (nowMs != stampMs) {
            stampMs = nowMs;
            stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(nowMs, Qt::UTC), 0);
        }
        return stamp;
    }

private:
    qint64 stampMs = -1; // none yet
    CMidTime stamp;
};
