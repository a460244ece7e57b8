#include "ContinuousClock.h"

#include <QDateTime>

#include <chrono>
#include <utility>

namespace sbus {

namespace {

constexpr int day = 24 * 60 * 60 * 1000; // milliseconds

// Of the two ways around the day's circle the shorter one is meant. So a large step back is the start of
// another day; a small step back, or a large one forward, is a clock that was set back, for which no time
// passes.
int stepInACircle(int step) {
    if (step < -day / 2)
        return step + day;
    return step < 0 || step > day / 2 ? 0 : step;
}

} // namespace

ContinuousClock::ContinuousClock(std::function<int()> newTimeOfDay, std::function<qint64()> newSteadyTime)
    : timeOfDay(std::move(newTimeOfDay)), steadyTime(std::move(newSteadyTime)), lastTimeOfDay(timeOfDay()),
      lastSteadyTime(steadyTime()) {}

qint64 ContinuousClock::passed() {
    const int step = timeOfDay() - lastTimeOfDay;
    const qint64 steadyStep = steadyTime() - lastSteadyTime;
    lastTimeOfDay += step;
    lastSteadyTime += steadyStep;
    return steadyStep > day / 2 ? steadyStep : stepInACircle(step);
}

// By UTC: local time jumps an hour twice a year.
int ContinuousClock::utcTimeOfDay() {
    return QDateTime::currentDateTimeUtc().time().msecsSinceStartOfDay();
}

qint64 ContinuousClock::steadyMilliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace sbus
