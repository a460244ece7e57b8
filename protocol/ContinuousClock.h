#pragma once

#include <QtGlobal>

#include <functional>

namespace sbus {

// Makes a count that goes on from a time-of-day reading, which starts again from 0 after a day and jumps
// when somebody sets the clock. A clock that is set back by less than half a day makes the count stand still
// for one reading; one that is set forward makes it jump. Over more than half a day, such as that of a line
// that was down, a time of day tells nothing: there the steady clock counts. Not thread-safe.
class ContinuousClock {
public:
    // `timeOfDay`: milliseconds, 0 to 86,399,999. `steadyTime`: milliseconds from any moment on.
    explicit ContinuousClock(std::function<int()> timeOfDay,
                             std::function<qint64()> steadyTime = steadyMilliseconds);

    // Milliseconds since the clock was made, less those that were moved past. Never goes back by itself.
    quint32 elapsed();
    // Counts from a moment that is `ms` later.
    void moveOriginBy(quint32 ms);

private:
    static qint64 steadyMilliseconds();

    std::function<int()> reading;
    std::function<qint64()> steady;
    int last;
    qint64 lastSteady;
    quint32 count = 0;
};

} // namespace sbus
