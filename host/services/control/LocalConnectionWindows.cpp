#include "LocalConnection.h"

#include "PipeNameWindows.h"

#include <QLocalSocket>

#include <chrono>
#include <system_error>

#include <windows.h>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{5}; // for a busy host
constexpr DWORD waitMs = 100;               // for its next free end; it may also have ended meanwhile

Connecting judge(DWORD failure) {
    using End = Connecting::End;
    if (failure == ERROR_FILE_NOT_FOUND)
        return {End::NobodyThere, "nobody listens there"};
    if (failure == ERROR_PIPE_BUSY)
        return {End::Failed, "whoever listens there accepts nobody"};
    if (failure == ERROR_ACCESS_DENIED)
        return {End::Failed,
                "permission denied: the pipe is another user's, or that of a service, which takes commands "
                "from a console that was opened as administrator"};
    return {End::Failed, std::system_category().message(static_cast<int>(failure))};
}

} // namespace

// Whoever listens may learn who connects, and nothing more.
Connecting connectTo(QLocalSocket& socket, const std::string& path) {
    const std::wstring name = pipeName(path);
    const auto deadline = Clock::now() + patience;
    for (;;) {
        const HANDLE pipe =
            CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
        if (pipe != INVALID_HANDLE_VALUE && socket.setSocketDescriptor(reinterpret_cast<qintptr>(pipe)))
            return {Connecting::End::Connected, {}};
        const DWORD failure = GetLastError();
        if (pipe != INVALID_HANDLE_VALUE)
            CloseHandle(pipe);
        if (failure != ERROR_PIPE_BUSY || Clock::now() > deadline)
            return judge(failure);
        WaitNamedPipeW(name.c_str(), waitMs);
    }
}

} // namespace host
