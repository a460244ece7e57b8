#pragma once

#include <HalvexDriverComponent/CMidTime.h>

// The time stamp of each value that is put. It holds milliseconds, and hundreds of values are put in one: so
// it is made anew only when the millisecond is a new one, which spares the look-up of the system's time zone.
// One thread.
class ValueStamp {
public:
    // Made from local time, which a host may take apart.
    const CMidTime& now() {
        const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
        if (nowMs != stampMs) {
            stampMs = nowMs;
            stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(nowMs), 0);
        }
        return stamp;
    }

private:
    qint64 stampMs = -1; // none yet
    CMidTime stamp;
};
