#include "ContinuousClock.h"

#include <utility>

namespace sbus {

ContinuousClock::ContinuousClock(std::function<int()> source) : reading(std::move(source)), last(reading()) {}

quint32 ContinuousClock::elapsed() {
    constexpr int day = 24 * 60 * 60 * 1000; // milliseconds
    const int now = reading();
    int step = now - last;
    // The readings of a day make a circle, so a step may be one forward or one back. The shorter one is
    // meant: a large step back is the start of another day, a large one forward a clock that was set back to
    // before the first reading. Time stands still for the reading of a clock that was set back.
    if (step < -day / 2)
        step += day;
    else if (step < 0 || step > day / 2)
        step = 0;
    last = now;
    count += static_cast<quint32>(step);
    return count;
}

void ContinuousClock::moveOriginBy(quint32 ms) {
    count -= ms;
}

} // namespace sbus
