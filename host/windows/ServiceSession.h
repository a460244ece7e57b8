#pragma once

#include <memory>
#include <string>

namespace host {

// This process as a service of Windows. The service manager hears of its progress on a thread of the
// session's own, and its wish to stop becomes that of stopsignal. States: made, begun, running, ended. Main
// thread; one session a process.
class ServiceSession {
public:
    ServiceSession();
    ServiceSession(const ServiceSession&) = delete;
    ServiceSession& operator=(const ServiceSession&) = delete;
    // Ends, if need be, as failed.
    ~ServiceSession();

    // Empty, or why this process is no service: nobody but the service manager starts one.
    std::string begin(const std::string& serviceName);
    void tellRunning();
    // The process should end soon after.
    void end(unsigned status);

private:
    struct State;
    const std::unique_ptr<State> state;
};

} // namespace host
