#include "StopProgram.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <windows.h>

// Begins the thread in the program that the system begins there for an event of its console. The system's own
// libraries lie at one address in all programs.
void stopProgram(const QProcess& program, StopBy way) {
    const DWORD event = way == StopBy::Key      ? CTRL_C_EVENT
                        : way == StopBy::System ? CTRL_BREAK_EVENT
                                                : CTRL_CLOSE_EVENT;
    const FARPROC routine = GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine");
    const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, static_cast<DWORD>(program.processId()));
    ASSERT_NE(process, nullptr);
    const HANDLE thread = CreateRemoteThread(
        process, nullptr, 0,
        reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(routine)), // NOLINT
        reinterpret_cast<void*>(static_cast<ULONG_PTR>(event)), 0, nullptr);        // NOLINT
    EXPECT_NE(thread, nullptr);
    CloseHandle(thread);
    CloseHandle(process);
}
