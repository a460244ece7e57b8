#include "StopSignal.h"

#include "Terminal.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace host::stopsignal {

namespace {

constexpr int forcedExitStatus = 130; // as shells report an interrupted program

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

void handle(int signal) {
    if (requested.exchange(true)) {
        terminal::restoreInSignal();
        std::_Exit(forcedExitStatus);
    }
    std::signal(signal, handle); // some systems take the handler out with each signal
}

} // namespace

void install() {
    std::signal(SIGINT, handle);
    std::signal(SIGTERM, handle);
}

bool isRequested() {
    return requested.load();
}

} // namespace host::stopsignal
