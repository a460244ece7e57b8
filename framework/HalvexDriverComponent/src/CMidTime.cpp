#include <HalvexDriverComponent/CMidTime.h>

CMidTime::CMidTime(const QDateTime& time, int status)
    : milliseconds(time.isValid() ? time.toMSecsSinceEpoch() : 0), sourceStatus(status) {}

QDateTime CMidTime::toDateTime() const {
    return isNull() ? QDateTime() : QDateTime::fromMSecsSinceEpoch(milliseconds);
}
