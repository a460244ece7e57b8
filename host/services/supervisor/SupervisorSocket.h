#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace host {

// Where the supervisor of the system's services (systemd) hears from a service that it has started. Any
// thread.
class SupervisorSocket {
public:
    SupervisorSocket() = default;
    SupervisorSocket(const SupervisorSocket&) = delete;
    SupervisorSocket& operator=(const SupervisorSocket&) = delete;
    virtual ~SupervisorSocket() = default;

    // Lines such as "READY=1". False when it does not take them now.
    virtual bool tell(const std::string& lines) = 0;
};

struct Supervisor {
    std::unique_ptr<SupervisorSocket> socket;
    // How long it waits for a sign of life before it ends the service; none: it does not wait for any.
    std::optional<std::chrono::milliseconds> watchdog;
};

// The one that the environment names ($NOTIFY_SOCKET, $WATCHDOG_USEC); nothing when no supervisor has started
// this program, or it wants to hear nothing.
std::optional<Supervisor> findSupervisor();

} // namespace host
