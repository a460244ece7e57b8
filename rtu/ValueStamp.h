#pragma once

#include <HalvexDriverComponent/CMidTime.h>

// The time stamps of values that are put one after the other. A stamp holds milliseconds of the wall clock,
// and to make one of them asks the system for its time zone: so the values of one millisecond share one. One
// thread.
class ValueStamp {
public:
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
