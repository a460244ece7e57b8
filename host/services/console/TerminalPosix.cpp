#include "Terminal.h"

#include <csignal>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host::terminal {

bool isOutputTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool isErrorTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

Size size() {
    winsize window{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0)
        return {80, 24};
    return {window.ws_col, window.ws_row};
}

void prepare() {}

void survivePipeEnd() {
    std::signal(SIGPIPE, SIG_IGN);
}

void writeInSignal(const char* text, std::size_t length) {
    const ssize_t written = write(STDOUT_FILENO, text, length);
    static_cast<void>(written); // the program is about to end: nothing is left to be done about it
}

} // namespace host::terminal
