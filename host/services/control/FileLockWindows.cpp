#include "FileLock.h"

#include "PipeNameWindows.h"
#include "runtime/AccountsWindows.h"

#include <system_error>

#include <windows.h>

namespace host {

// A pipe that nobody can connect to: its name is one process's at a time, until that ends.
struct FileLock::Held {
    HANDLE pipe = INVALID_HANDLE_VALUE;
};

FileLock::FileLock(std::unique_ptr<Held> heldLock) : held(std::move(heldLock)) {}

FileLock::~FileLock() {
    CloseHandle(held->pipe);
}

FileLock::Taken FileLock::take(const std::string& path) {
    const accounts::Descriptor descriptor(accounts::pipeForOwnUser());
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    const HANDLE pipe =
        CreateNamedPipeW(pipeName(path).c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_FIRST_PIPE_INSTANCE,
                         PIPE_TYPE_BYTE | PIPE_REJECT_REMOTE_CLIENTS, 1, 0, 0, 0, &attributes);
    if (pipe != INVALID_HANDLE_VALUE)
        return {std::unique_ptr<FileLock>(new FileLock(std::make_unique<Held>(Held{pipe}))), false, {}};
    const DWORD failure = GetLastError();
    return {nullptr, failure == ERROR_ACCESS_DENIED || failure == ERROR_PIPE_BUSY,
            std::system_category().message(static_cast<int>(failure))};
}

} // namespace host
