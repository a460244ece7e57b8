#include "StopSignal.h"

#include "Terminal.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace host::stopsignal {

namespace {

constexpr int forcedExitStatus = 130; // as shells report an interrupted program

std::atomic<bool> requested{false};
std::atomic<bool> isSecondHeld{false};
std::atomic<bool> forced{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

void handle(int signal) {
    if (requested.exchange(true) && (!isSecondHeld || forced.exchange(true)))
        endAtOnce();
    std::signal(signal, handle); // some systems take the handler out with each signal
}

#ifdef SIGHUP
// nohup and its like have it ignored so that the program goes on without its terminal.
void installHangUp() {
    if (std::signal(SIGHUP, handle) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN);
}
#else
void installHangUp() {}
#endif

} // namespace

void install() {
    std::signal(SIGINT, handle);
    std::signal(SIGTERM, handle);
    installHangUp();
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
