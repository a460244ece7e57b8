// A library to be loaded before all others of a program. It moves the program's wall clock by as much as a
// shared file says: 8 bytes at its start, nanoseconds, in the file that the variable SBUS_MOVED_CLOCK names.
// The steady clock stays as it is, as it does when somebody sets a system's clock.
//
// Waits until a moment of the wall clock are the system's own and do not follow: a program that has one
// hangs, or returns too early, which a test sees.

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#define SHOWN extern "C" __attribute__((visibility("default")))

namespace {

constexpr std::int64_t nanosecondsOfSecond = 1'000'000'000;

using Offset = std::atomic<std::int64_t>;
static_assert(sizeof(Offset) == sizeof(std::int64_t), "the file holds the number alone");

const Offset* mapOffset() {
    const char* const path = std::getenv("SBUS_MOVED_CLOCK");
    const int file = path != nullptr ? open(path, O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0)
        return nullptr;
    void* const area = mmap(nullptr, sizeof(Offset), PROT_READ, MAP_SHARED, file, 0);
    close(file);
    return area == MAP_FAILED ? nullptr : static_cast<const Offset*>(area);
}

std::int64_t movedBy() {
    static const Offset* const offset = mapOffset();
    return offset != nullptr ? offset->load(std::memory_order_relaxed) : 0;
}

bool isWallClock(clockid_t clock) {
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
}

} // namespace

// Asks the system itself: looking for the function of the same name behind this one may ask for the time.
SHOWN int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && isWallClock(clock)) {
        const std::int64_t moved = time->tv_nsec + movedBy() % nanosecondsOfSecond + nanosecondsOfSecond;
        time->tv_sec += movedBy() / nanosecondsOfSecond + moved / nanosecondsOfSecond - 1;
        time->tv_nsec = moved % nanosecondsOfSecond;
    }
    return static_cast<int>(result);
}

SHOWN int gettimeofday(timeval* time, void*) noexcept {
    timespec now{};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    time->tv_sec = now.tv_sec;
    time->tv_usec = now.tv_nsec / 1000;
    return result;
}

SHOWN std::time_t time(std::time_t* seconds) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (seconds != nullptr)
        *seconds = now.tv_sec;
    return now.tv_sec;
}
