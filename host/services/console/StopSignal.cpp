#include "StopSignal.h"

#include "Terminal.h"

#include <atomic>
#include <cstdlib>

namespace host::stopsignal {

namespace {

constexpr int forcedExitStatus = 130; // as shells report an interrupted program

std::atomic<bool> requested{false};
std::atomic<bool> isSecondHeld{false};
std::atomic<bool> forced{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

} // namespace

void note() {
    if (requested.exchange(true) && (!isSecondHeld || forced.exchange(true)))
        endAtOnce();
}

bool isRequested() {
    return requested.load();
}

void request() {
    requested = true;
}

void holdSecond() {
    isSecondHeld = true;
}

void releaseSecond() {
    isSecondHeld = false;
}

bool isForced() {
    return forced.load();
}

void endAtOnce() {
    terminal::restoreInSignal();
    std::_Exit(forcedExitStatus);
}

} // namespace host::stopsignal
