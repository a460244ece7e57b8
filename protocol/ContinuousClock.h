#pragma once

#include <QtGlobal>

#include <functional>

namespace sbus {

// Makes a count that goes on from a time-of-day reading, which starts again from 0 after a day and jumps
// when somebody sets the clock. A clock that is set back by less than half a day makes the count stand still
// for one reading; one that is set forward makes it jump. So two readings must not lie half a day apart, or
// the count stands still for the time between them. Not thread-safe.
class ContinuousClock {
public:
    // `reading`: milliseconds, 0 to 86,399,999.
    explicit ContinuousClock(std::function<int()> reading);

    // Milliseconds since the clock was made, less those that were moved past. Never goes back by itself.
    quint32 elapsed();
    // Counts from a moment that is `ms` later.
    void moveOriginBy(quint32 ms);

private:
    std::function<int()> reading;
    int last;
    quint32 count = 0;
};

} // namespace sbus
