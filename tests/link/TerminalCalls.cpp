#include "TerminalCalls.h"

#include <cerrno>
#include <cstdarg>
#include <optional>

#include <dlfcn.h>
#include <sys/ioctl.h>

// Found by the link library before the system's own.
#define NOTED __attribute__((visibility("default")))

namespace {

bool obedient = false;
std::optional<termios> taken; // by obedient terminals
std::vector<TerminalCalls::Break> noted;
int breakError = 0;

// The system's own function behind the one of this file.
template <class Function>
Function systemFunction(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

namespace TerminalCalls {

ObedientTerminals::ObedientTerminals() {
    obedient = true;
    taken.reset();
}

ObedientTerminals::~ObedientTerminals() {
    obedient = false;
}

const termios& ObedientTerminals::settings() const {
    return taken.value();
}

const std::vector<Break>& breaks() {
    return noted;
}

void clear() {
    noted.clear();
}

void failBreaks(int error) {
    breakError = error;
}

} // namespace TerminalCalls

extern "C" NOTED int tcsetattr(int descriptor, int when, const termios* settings) noexcept {
    if (obedient) {
        taken = *settings;
        return 0;
    }
    return systemFunction<int (*)(int, int, const termios*)>("tcsetattr")(descriptor, when, settings);
}

extern "C" NOTED int tcgetattr(int descriptor, termios* settings) noexcept {
    if (obedient && taken) {
        *settings = *taken;
        return 0;
    }
    return systemFunction<int (*)(int, termios*)>("tcgetattr")(descriptor, settings);
}

extern "C" NOTED int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (request == TIOCSBRK || request == TIOCCBRK) {
        noted.push_back({request == TIOCSBRK, std::chrono::steady_clock::now()});
        if (breakError != 0) {
            errno = breakError;
            return -1;
        }
    }
    return systemFunction<int (*)(int, unsigned long, ...)>("ioctl")(descriptor, request, argument);
}
