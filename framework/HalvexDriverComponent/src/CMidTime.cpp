#include <HalvexDriverComponent/CMidTime.h>

CMidTime::CMidTime(const QDateTime& time, int status) : sourceStatus(status) {
    const qint64 milliseconds = time.isValid() ? time.toMSecsSinceEpoch() : 0;
    lowHalf = static_cast<quint32>(milliseconds & 0xFFFF'FFFF);
    highHalf = static_cast<qint32>((milliseconds - lowHalf) / halfRange);
}

QDateTime CMidTime::toDateTime() const {
    return isNull() ? QDateTime() : QDateTime::fromMSecsSinceEpoch(toMSecsSinceEpoch());
}
