#pragma once

#include "runtime/Users.h"

#include <QByteArray>
#include <QLocalSocket>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The client's end of a control socket. Waits where it is called; one thread.
class ControlClient {
public:
    // Whether to believe what this process says. Whoever is quicker can listen at a name that a host would
    // have taken.
    using Trust = std::function<bool(const Peer&)>;

    explicit ControlClient(Trust trustInPeers = isOwnUserOrRoot);

    // Connects to the first path at which somebody listens who is believed. False when nobody does.
    bool connectTo(const std::vector<std::string>& paths);
    // Why not, at each path where it was not for want of a listener.
    const std::vector<std::string>& faults() const { return pathFaults; }
    // False when the connection has ended, or the host takes nothing.
    bool send(const QByteArray& line);
    // The next line, without its end. Nothing at the end of the connection, soon after `isCancelled` became
    // true, and when the line is longer than longestReplyLine.
    std::optional<QByteArray> nextLine(const std::function<bool()>& isCancelled);
    // No host sends that: the connection is ended.
    bool wasLineTooLong() const { return isLineTooLong; }

    static bool isOwnUserOrRoot(const Peer& peer);

    // Bytes. The longest that a host sends is the status of a site of some ten thousand controllers.
    static constexpr int longestReplyLine = 16 * 1024 * 1024;

private:
    const Trust trusts;
    QLocalSocket socket;
    std::vector<std::string> pathFaults;
    bool isLineTooLong = false;
};

} // namespace host
