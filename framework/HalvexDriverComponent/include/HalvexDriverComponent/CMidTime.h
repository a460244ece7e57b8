#pragma once

#include <HalvexDriverComponent/Export.h>

#include <QDateTime>

// A time stamp of a value: milliseconds of UTC, and the status that its source gave it (0: the computer's
// own clock).
class HALVEXDRIVERCOMPONENT_EXPORT CMidTime {
public:
    CMidTime() = default;
    CMidTime(const QDateTime& time, int status);

    bool isNull() const { return milliseconds == 0; }
    qint64 toMSecsSinceEpoch() const { return milliseconds; }
    QDateTime toDateTime() const; // local time
    int status() const { return sourceStatus; }

private:
    qint64 milliseconds = 0;
    int sourceStatus = 0;
};
