#pragma once

#include <HalvexDriverComponent/Export.h>

#include <QDateTime>

// A time stamp of a value: milliseconds of UTC, and the status that its source gave it (0: the computer's
// own clock). Each value has one or more, so it takes 12 bytes, not the 16 of a whole number of 8.
class HALVEXDRIVERCOMPONENT_EXPORT CMidTime {
public:
    CMidTime() = default;
    CMidTime(const QDateTime& time, int status);

    bool isNull() const { return toMSecsSinceEpoch() == 0; }
    qint64 toMSecsSinceEpoch() const { return qint64{highHalf} * halfRange + lowHalf; }
    QDateTime toDateTime() const; // local time
    int status() const { return sourceStatus; }

private:
    static constexpr qint64 halfRange = 0x1'0000'0000;

    // Of the milliseconds.
    quint32 lowHalf = 0;
    qint32 highHalf = 0;
    qint32 sourceStatus = 0;
};
