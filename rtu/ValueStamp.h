#pragma once

#include <HalvexDriverComponent/CMidTime.h>

// The time stamp of values that are put one after the other. It holds milliseconds of the wall clock, and the
// values of a telegram are put within a few microseconds: so the clock, which costs more than all else that
// is done for a value, is asked once for them together. To make a stamp asks the system for its time zone: so
// one is made only when the millisecond is a new one. One thread.
class ValueStamp {
public:
    // The time is now.
    void renew() {
        const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
        if (nowMs != stampMs) {
            stampMs = nowMs;
            stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(nowMs), 0);
        }
    }

    const CMidTime& value() const { return stamp; }

private:
    qint64 stampMs = -1; // none yet
    CMidTime stamp;
};
