#include "Terminal.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <termios.h>
#include <unistd.h>

// The keyboard of a terminal, and a program that its user lets rest with Ctrl-Z.

namespace host::terminal {

namespace {

std::atomic<bool> hasKeys{false};
std::atomic<bool> isRestWanted{false};
std::atomic<bool> hasReturned{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

termios modeBefore{}; // good while hasKeys is set

void handleSignal(int signal) {
    (signal == SIGTSTP ? isRestWanted : hasReturned) = true;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART; // no write of another thread shall fail over it
    sigaction(signal, &action, nullptr);
}

} // namespace

bool isForeground() {
    const pid_t owner = tcgetpgrp(STDOUT_FILENO);
    return owner == -1 || owner == getpgrp(); // -1: a terminal without jobs
}

// Letters come at once and are not echoed; Ctrl-C and Ctrl-Z stay signals, output stays as it is.
void beginKeys() {
    handle(SIGTSTP, handleSignal);
    handle(SIGCONT, handleSignal);
    if (isatty(STDIN_FILENO) != 1 || tcgetattr(STDIN_FILENO, &modeBefore) != 0)
        return;
    termios mode = modeBefore;
    mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    mode.c_cc[VMIN] = 0; // a read waits for nothing
    mode.c_cc[VTIME] = 0;
    hasKeys = tcsetattr(STDIN_FILENO, TCSANOW, &mode) == 0;
}

void endKeys() {
    handle(SIGTSTP, SIG_DFL);
    handle(SIGCONT, SIG_DFL);
    // In the background it is somebody else's, who has set it for himself.
    if (hasKeys.exchange(false) && isForeground())
        tcsetattr(STDIN_FILENO, TCSANOW, &modeBefore);
}

std::string readKeys() {
    if (!hasKeys || !isForeground())
        return {};
    std::array<char, 256> bytes{};
    const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
    return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

bool takeRestRequest() {
    return isRestWanted.exchange(false);
}

bool takeReturn() {
    return hasReturned.exchange(false);
}

// To this thread, so that it is not past here before the program rests.
void rest() {
    handle(SIGTSTP, SIG_DFL);
    raise(SIGTSTP);
}

bool understandsSequences() {
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
}

} // namespace host::terminal
