#include "ListeningSocket.h"

#include "LocalAddressPosix.h"

#include <QLocalSocket>
#include <QSocketNotifier>

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace host {

struct ListeningSocket::Open {
    Open() = default;
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    ~Open() {
        notifier.reset();
        if (descriptor >= 0)
            ::close(descriptor);
    }

    int descriptor = -1;
    std::string path;
    struct stat file {};
    std::unique_ptr<QSocketNotifier> notifier;
};

namespace {

std::string reason() {
    return std::generic_category().message(errno);
}

bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool isAnybodyWaiting(int descriptor) {
    pollfd asked{descriptor, POLLIN, 0};
    return poll(&asked, 1, 0) > 0;
}

// Between the two steps nobody listens yet, so that nobody gets in by the modes that a new file has.
std::string bindFor(int descriptor, const std::string& path, std::optional<GroupId> group) {
    constexpr mode_t userAlone = 0600;
    constexpr mode_t withGroup = 0660;
    const LocalAddress address(path);
    if (!address.fault().empty())
        return address.fault();
    if (unlink(path.c_str()) != 0 && errno != ENOENT)
        return "the socket that was left there cannot be removed: " + reason();
    if (bind(descriptor, address.get(), address.size()) != 0)
        return reason();
    if (group && lchown(path.c_str(), static_cast<uid_t>(-1), *group) != 0)
        return "it cannot be given to the group: " + reason() + "; its user has to be a member";
    if (chmod(path.c_str(), group ? withGroup : userAlone) != 0)
        return "it cannot be closed to others: " + reason();
    return {};
}

} // namespace

ListeningSocket::ListeningSocket(Take takeClient, MakeRoom makeRoomForClients, QObject* owner)
    : QObject(owner), take(std::move(takeClient)), makeRoom(std::move(makeRoomForClients)) {}

ListeningSocket::~ListeningSocket() {
    close();
}

// What was left of an earlier host may be replaced; nothing else.
bool ListeningSocket::isFreeOrSocket(const std::string& path) {
    struct stat found {};
    return lstat(path.c_str(), &found) != 0 || S_ISSOCK(found.st_mode); // why not seen, the next step tells
}

std::string ListeningSocket::listen(const std::string& path, std::optional<GroupId> group) {
    constexpr int waitingClients = 128;
    close();
    auto opened = std::make_unique<Open>();
    opened->path = path;
    opened->descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (opened->descriptor < 0)
        return reason();
    std::string fault = bindFor(opened->descriptor, path, group);
    if (!fault.empty())
        return fault;
    if (lstat(path.c_str(), &opened->file) != 0 || ::listen(opened->descriptor, waitingClients) != 0)
        return reason();
    opened->notifier = std::make_unique<QSocketNotifier>(opened->descriptor, QSocketNotifier::Read);
    connect(opened->notifier.get(), &QSocketNotifier::activated, this, [this] { acceptClients(); });
    open = std::move(opened);
    return {};
}

void ListeningSocket::acceptClients() {
    while (open) {
        const int client = accept4(open->descriptor, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (client >= 0) {
            auto connected = std::make_unique<QLocalSocket>();
            if (connected->setSocketDescriptor(client))
                take(connected.release());
            else
                ::close(client);
        } else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
            // The system says so before it looks whether there is anybody.
            if (!isAnybodyWaiting(open->descriptor))
                return;
            // The client waits. The notifier would call again at once, and for ever.
            if (!makeRoom())
                return open->notifier->setEnabled(false);
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return;
        }
    }
}

bool ListeningSocket::isInPlace() const {
    struct stat there {};
    return open && lstat(open->path.c_str(), &there) == 0 && isSameFile(there, open->file);
}

void ListeningSocket::resume() {
    if (open)
        open->notifier->setEnabled(true);
}

void ListeningSocket::close() {
    if (isInPlace())
        unlink(open->path.c_str());
    open.reset();
}

} // namespace host
