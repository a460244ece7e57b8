// Stands in for three functions of the C library; the program's own definitions are found before the
// library's.

#include "SteppedTime.h"

#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>
#include <utility>

// Qt's library and the C++ one find it too.
#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

constexpr std::int64_t msInSecond = 1'000;
constexpr std::int64_t nsInMs = 1'000'000;

constexpr std::int64_t startMs = msInSecond;      // not 0, which some take for "no time"
constexpr std::int64_t wallStart = 1'767'225'598; // 23:59:58 on the last day of 2025, UTC; seconds

std::int64_t passedMs = startMs;
thread_local std::function<void(std::int64_t)> currentSleeper;

} // namespace

namespace steppedTime {

void restart() {
    passedMs = startMs;
}

std::int64_t nowMs() {
    return passedMs;
}

void pass(std::int64_t ms) {
    passedMs += ms;
}

Sleepless::Sleepless(std::function<void(std::int64_t)> sleeper) {
    currentSleeper = std::move(sleeper);
}

Sleepless::~Sleepless() {
    currentSleeper = nullptr;
}

} // namespace steppedTime

EXPORTED int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (clock != CLOCK_MONOTONIC)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    time->tv_sec = passedMs / msInSecond;
    time->tv_nsec = passedMs % msInSecond * nsInMs;
    return 0;
}

EXPORTED int gettimeofday(timeval* time, void*) noexcept {
    constexpr std::int64_t usInMs = 1'000;
    time->tv_sec = wallStart + passedMs / msInSecond;
    time->tv_usec = passedMs % msInSecond * usInMs;
    return 0;
}

EXPORTED int nanosleep(const timespec* wanted, timespec* left) {
    if (!currentSleeper)
        return static_cast<int>(syscall(SYS_nanosleep, wanted, left));
    currentSleeper(wanted->tv_sec * msInSecond + wanted->tv_nsec / nsInMs);
    return 0;
}
