#include "ListeningSocket.h"

#include "PipeNameWindows.h"
#include "runtime/AccountsWindows.h"

#include <QFileInfo>
#include <QLocalSocket>
#include <QWinEventNotifier>

#include <system_error>
#include <utility>

#include <windows.h>

namespace host {

namespace {

constexpr DWORD bufferBytes = 64 * 1024; // in each direction; the system takes it as advice

std::string reason(DWORD failure) {
    if (failure == ERROR_ACCESS_DENIED || failure == ERROR_PIPE_BUSY)
        return "another program has made a pipe of its name";
    return std::system_category().message(static_cast<int>(failure));
}

} // namespace

// Each client gets an end of the pipe for itself. One end waits for the next client at any time, so that the
// name stays this process's: as long as an end is open, nobody else gets to make the first one.
struct ListeningSocket::Open {
    Open() : connected(CreateEventW(nullptr, TRUE, FALSE, nullptr)), notifier(connected) {}
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    ~Open() {
        notifier.setEnabled(false);
        if (end != INVALID_HANDLE_VALUE) {
            DWORD none = 0;
            if (CancelIoEx(end, &waiting) != 0)
                GetOverlappedResult(end, &waiting, &none, TRUE);
            CloseHandle(end);
        }
        CloseHandle(connected);
    }

    std::string makeFirstEnd();
    std::string makeEnd(DWORD first);
    void awaitClient();
    HANDLE takeEnd() { return std::exchange(end, INVALID_HANDLE_VALUE); }

    const HANDLE connected; // signalled when the end that waits has a client
    QWinEventNotifier notifier;
    const accounts::Descriptor descriptor{accounts::pipeForOwnUser()};
    std::wstring name;
    HANDLE end = INVALID_HANDLE_VALUE; // that waits
    OVERLAPPED waiting{};
};

// Wine does not heed the flag, but counts the ends that there are.
std::string ListeningSocket::Open::makeFirstEnd() {
    const std::string fault = makeEnd(FILE_FLAG_FIRST_PIPE_INSTANCE);
    DWORD ends = 0;
    if (!fault.empty() ||
        (GetNamedPipeHandleStateW(end, nullptr, &ends, nullptr, nullptr, nullptr, 0) != 0 && ends == 1))
        return fault;
    CloseHandle(takeEnd());
    return reason(ERROR_PIPE_BUSY);
}

// `first`: FILE_FLAG_FIRST_PIPE_INSTANCE for one that must not exist yet, else 0.
std::string ListeningSocket::Open::makeEnd(DWORD first) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    end = CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | first,
                           PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
                           PIPE_UNLIMITED_INSTANCES, bufferBytes, bufferBytes, 0, &attributes);
    return end == INVALID_HANDLE_VALUE ? reason(GetLastError()) : std::string();
}

void ListeningSocket::Open::awaitClient() {
    ResetEvent(connected);
    waiting = {};
    waiting.hEvent = connected;
    // A client may have come, and even left, between the making of the end and this.
    if (ConnectNamedPipe(end, &waiting) != 0 || GetLastError() != ERROR_IO_PENDING)
        SetEvent(connected);
}

ListeningSocket::ListeningSocket(Take takeClient, MakeRoom makeRoomForClients, QObject* owner)
    : QObject(owner), take(std::move(takeClient)), makeRoom(std::move(makeRoomForClients)) {}

ListeningSocket::~ListeningSocket() {
    close();
}

bool ListeningSocket::isFreeOrSocket(const std::string& path) {
    return isPipe(path) || !QFileInfo::exists(QString::fromStdString(path));
}

std::string ListeningSocket::listen(const std::string& path, std::optional<GroupId>) {
    close();
    auto opened = std::make_unique<Open>();
    opened->name = pipeName(path);
    std::string fault = opened->makeFirstEnd();
    if (!fault.empty())
        return fault;
    opened->awaitClient();
    connect(&opened->notifier, &QWinEventNotifier::activated, this, [this] { acceptClients(); });
    open = std::move(opened);
    return {};
}

void ListeningSocket::acceptClients() {
    if (!open)
        return;
    ResetEvent(open->connected);
    const HANDLE client = open->takeEnd();
    const bool hasNext = open->makeEnd(0).empty() || (makeRoom() && open->makeEnd(0).empty());
    if (hasNext)
        open->awaitClient();
    auto socket = std::make_unique<QLocalSocket>();
    // Fails for one that has left already.
    if (socket->setSocketDescriptor(reinterpret_cast<qintptr>(client)))
        take(socket.release());
    else
        CloseHandle(client);
}

// A pipe's name cannot be taken from it.
bool ListeningSocket::isInPlace() const {
    return open != nullptr;
}

void ListeningSocket::resume() {
    if (open && open->end == INVALID_HANDLE_VALUE && open->makeEnd(0).empty())
        open->awaitClient();
}

void ListeningSocket::close() {
    open.reset();
}

} // namespace host
