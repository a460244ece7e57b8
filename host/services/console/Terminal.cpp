#include "Terminal.h"

#include "TerminalSequences.h"

#include <atomic>
#include <cstdlib>

namespace host::terminal {

namespace {

std::atomic<bool> isScreenTaken{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

} // namespace

void noteScreenTaken(bool taken) {
    isScreenTaken = taken;
}

void restoreInSignal() {
    if (!isScreenTaken)
        return;
    writeInSignal(leaveScreen, sizeof leaveScreen - 1);
    endKeys();
}

bool mayUseColours() {
    const char* const refusal = std::getenv("NO_COLOR");
    return refusal == nullptr || *refusal == '\0';
}

} // namespace host::terminal
