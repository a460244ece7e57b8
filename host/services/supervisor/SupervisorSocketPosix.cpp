#include "SupervisorSocket.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace host {

namespace {

// Datagrams to a socket of the local machine, by a path, or by a name that no file has ("@name").
class DatagramSocket final : public SupervisorSocket {
public:
    explicit DatagramSocket(const std::string& name) : descriptor(socket(AF_UNIX, SOCK_DGRAM, 0)) {
        if (descriptor >= 0)
            fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.data(), name.size());
        if (name.front() == '@')
            address.sun_path[0] = '\0';
        length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    }
    ~DatagramSocket() override {
        if (descriptor >= 0)
            close(descriptor);
    }

    static bool hasRoomFor(const std::string& name) { return name.size() < sizeof(sockaddr_un::sun_path); }

    // Never waits: a supervisor that is slow must not hold up the end of the run.
    bool tell(const std::string& lines) override {
        return sendto(descriptor, lines.data(), lines.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                      reinterpret_cast<const sockaddr*>(&address), length) >= 0;
    }

private:
    const int descriptor;
    sockaddr_un address{};
    socklen_t length = 0;
};

std::string fromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// In a child that inherits the environment the period is its parent's.
std::optional<std::chrono::milliseconds> watchdogPeriod() {
    const std::string process = fromEnvironment("WATCHDOG_PID");
    if (!process.empty() && process != std::to_string(getpid()))
        return std::nullopt;
    const std::chrono::microseconds period(
        std::strtoll(fromEnvironment("WATCHDOG_USEC").c_str(), nullptr, 10));
    const auto inMilliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(period);
    if (inMilliseconds.count() <= 0)
        return std::nullopt;
    return inMilliseconds;
}

} // namespace

std::optional<Supervisor> findSupervisor() {
    const std::string name = fromEnvironment("NOTIFY_SOCKET");
    const bool isAddress = name.size() > 1 && (name.front() == '/' || name.front() == '@');
    if (!isAddress || !DatagramSocket::hasRoomFor(name))
        return std::nullopt;
    return Supervisor{std::make_unique<DatagramSocket>(name), watchdogPeriod()};
}

} // namespace host
