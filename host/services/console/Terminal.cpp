#include "Terminal.h"

#include "TerminalSequences.h"

#include <atomic>

namespace host::terminal {

namespace {

std::atomic<bool> isScreenTaken{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

} // namespace

void noteScreenTaken(bool taken) {
    isScreenTaken = taken;
}

void restoreInSignal() {
    if (isScreenTaken)
        writeInSignal(leaveScreen, sizeof leaveScreen - 1);
}

} // namespace host::terminal
