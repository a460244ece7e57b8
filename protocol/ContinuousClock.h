#pragma once

#include <QtGlobal>

#include <functional>

namespace sbus {

// Tells how much time has passed, from a time of day, which starts again from 0 after a day and jumps when
// somebody sets the clock. A clock that is set back by less than half a day makes no time pass for one
// reading; one that is set forward makes it jump. Over more than half a day without a reading a time of day
// cannot tell how many days have passed: there the steady clock counts. Not thread-safe.
class ContinuousClock {
public:
    // `timeOfDay`: milliseconds, 0 to 86,399,999. `steadyTime`: milliseconds from any moment on.
    explicit ContinuousClock(std::function<int()> timeOfDay = utcTimeOfDay,
                             std::function<qint64()> steadyTime = steadyMilliseconds);

    // Milliseconds since this was last called, or since the clock was made. Never negative.
    qint64 passed();

    static int utcTimeOfDay();
    static qint64 steadyMilliseconds();

private:
    std::function<int()> timeOfDay;
    std::function<qint64()> steadyTime;
    int lastTimeOfDay;
    qint64 lastSteadyTime;
};

} // namespace sbus
