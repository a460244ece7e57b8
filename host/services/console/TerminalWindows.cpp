#include "Terminal.h"

#include <io.h>
#include <windows.h>

namespace host::terminal {

namespace {

constexpr int outputDescriptor = 1;
constexpr int errorDescriptor = 2;

} // namespace

bool isOutputTerminal() {
    return _isatty(outputDescriptor) != 0;
}

bool isErrorTerminal() {
    return _isatty(errorDescriptor) != 0;
}

Size size() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0)
        return {80, 24};
    return {static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1),
            static_cast<unsigned>(info.srWindow.Bottom - info.srWindow.Top + 1)};
}

void prepare() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode) != 0)
        SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

// Keys are not read here: pages take turns.
bool understandsSequences() {
    return true;
}

bool isForeground() {
    return true;
}

void beginKeys() {}

void endKeys() {}

std::string readKeys() {
    return {};
}

bool takeRestRequest() {
    return false;
}

bool takeReturn() {
    return false;
}

void rest() {}

void survivePipeEnd() {} // a write to a closed pipe fails here without a signal

void writeInSignal(const char* text, std::size_t length) {
    _write(outputDescriptor, text, static_cast<unsigned>(length));
}

} // namespace host::terminal
