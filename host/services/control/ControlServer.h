#pragma once

#include "ControlDoor.h"
#include "ControlledHost.h"

#include <QThread>

#include <memory>

namespace host {

class ControlListener;

// The control socket of a running site, served on a thread of its own.
// States: made, listening (after start), stopped (after stop, for good). Main thread alone. Host and store
// outlive it.
class ControlServer {
public:
    ControlServer(ControlledHost& controlledHost, const ValueStore& valueStore);
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;
    ~ControlServer();

    // Empty, or why nothing listens at the door's path. Throws ThreadRefused.
    std::string start(const ControlDoor& door);
    // Who waits for a reply is told that none will come, then every connection ends.
    void stop();

private:
    const std::size_t allowedClients; // by the descriptors
    QThread thread;
    std::unique_ptr<ControlListener> listener; // lives on the thread
};

} // namespace host
