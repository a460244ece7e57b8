#pragma once

#include <HalvexDriverComponent/CMidTime.h>

#include <limits>

namespace sbus {

// The computer's clock: milliseconds since the beginning of 1970 in UTC.
using WallClock = qint64 (*)();

// The time stamp of a value that is put. The clock is read for each value, but a stamp is made only when the
// millisecond has changed: to make one takes far longer than to put a value. One thread.
class ValueStamp {
public:
    explicit ValueStamp(WallClock wallClock) : clock(wallClock) {}

    // Good until the next call.
    const CMidTime& now() {
        const qint64 reading = clock();
        if (reading != millisecond) {
            millisecond = reading;
            stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(reading), 0);
        }
        return stamp;
    }

private:
    const WallClock clock;
    qint64 millisecond = std::numeric_limits<qint64>::min(); // of the stamp; there is none yet
    CMidTime stamp;
};

} // namespace sbus
