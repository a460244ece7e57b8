#include "StopSignal.h"

#include <windows.h>

namespace host::stopsignal {

namespace {

// Of the five seconds after which the system ends a program whose console was closed; the rest is for what
// has to be said then.
constexpr DWORD orderlyEndMs = 4'000;

// Services are told of every user who logs off.
bool isService() {
    DWORD session = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &session) != 0 && session == 0;
}

// In a thread of its own. For all but the keys the system ends the program once this returns, so the main
// thread has to come first.
BOOL WINAPI handle(DWORD event) {
    if (event == CTRL_LOGOFF_EVENT && isService())
        return TRUE;
    note();
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT)
        return TRUE;
    Sleep(orderlyEndMs);
    note();
    Sleep(INFINITE);
    return TRUE;
}

} // namespace

void install() {
    SetConsoleCtrlHandler(handle, TRUE);
}

} // namespace host::stopsignal
