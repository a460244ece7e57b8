#include "ContinuousClock.h"

#include <utility>

namespace sbus {

ContinuousClock::ContinuousClock(std::function<int()> source) : reading(std::move(source)), last(reading()) {}

quint32 ContinuousClock::elapsed() {
    constexpr int day = 24 * 60 * 60 * 1000; // milliseconds
    const int now = reading();
    int step = now - last;
    // A small step back is a clock that was set back: time stands still for that reading. A large one is
    // the start of another day.
    if (step < 0)
        step = step < -day / 2 ? step + day : 0;
    last = now;
    count += static_cast<quint32>(step);
    return count;
}

void ContinuousClock::moveOriginBy(quint32 ms) {
    count -= ms;
}

} // namespace sbus
