#include "ContinuousClock.h"

#include <chrono>
#include <utility>

namespace sbus {

namespace {

constexpr int day = 24 * 60 * 60 * 1000; // milliseconds

// What is meant by a step of a reading that goes in a circle, once a day: the shorter way. So a large step
// back is the start of another day, and a large one forward a clock that was set back to before the first
// reading. Time stands still for the reading of a clock that was set back.
int stepInACircle(int step) {
    if (step < -day / 2)
        return step + day;
    return step < 0 || step > day / 2 ? 0 : step;
}

} // namespace

ContinuousClock::ContinuousClock(std::function<int()> timeOfDay, std::function<qint64()> steadyTime)
    : reading(std::move(timeOfDay)), steady(std::move(steadyTime)), last(reading()), lastSteady(steady()) {}

quint32 ContinuousClock::elapsed() {
    const int step = reading() - last;
    const qint64 steadyStep = steady() - lastSteady;
    last += step;
    lastSteady += steadyStep;
    count += static_cast<quint32>(steadyStep > day / 2 ? steadyStep : stepInACircle(step));
    return count;
}

void ContinuousClock::moveOriginBy(quint32 ms) {
    count -= ms;
}

qint64 ContinuousClock::steadyMilliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace sbus
