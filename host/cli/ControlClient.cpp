#include "ControlClient.h"

#include "services/control/LocalConnection.h"

#include <algorithm>

namespace host {

namespace {

constexpr int patienceMs = 5'000; // for a busy host to take a line
constexpr int lookMs = 100;       // how soon a cancellation is seen

std::string strangerFault(const QLocalSocket& socket, const std::optional<Peer>& peer) {
    const std::string who = peer ? peerText(socket, *peer) : "whose the system does not tell";
    return "another user's program (" + who + ") listens there, which is not believed";
}

std::string faultText(const Connecting& attempt) {
    return attempt.end == Connecting::End::NotPermitted ? "permission denied: the socket is another user's, "
                                                          "or open to a group that you are no member of"
                                                        : attempt.fault;
}

} // namespace

bool ControlClient::isOwnUserOrRoot(const Peer& peer) {
    return isUserOrRoot(peer, ownUser());
}

ControlClient::ControlClient(Trust trustInPeers) : trusts(std::move(trustInPeers)) {
    socket.setReadBufferSize(longestReplyLine + 1);
}

bool ControlClient::connectTo(const std::vector<std::string>& paths) {
    return std::any_of(paths.begin(), paths.end(), [this](const std::string& path) {
        socket.abort();
        const Connecting attempt = host::connectTo(socket, path);
        if (attempt.end == Connecting::End::NobodyThere)
            return false;
        if (attempt.end != Connecting::End::Connected) {
            pathFaults.push_back("control socket " + path + ": " + faultText(attempt));
            return false;
        }
        const std::optional<Peer> peer = peerOf(socket);
        if (peer && trusts(*peer))
            return true;
        pathFaults.push_back("control socket " + path + ": " + strangerFault(socket, peer));
        socket.abort();
        return false;
    });
}

bool ControlClient::send(const QByteArray& line) {
    if (socket.write(line + '\n') < 0)
        return false;
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(patienceMs))
            return false;
    return true;
}

std::optional<QByteArray> ControlClient::nextLine(const std::function<bool()>& isCancelled) {
    while (!socket.canReadLine()) {
        isLineTooLong = socket.bytesAvailable() > longestReplyLine;
        if (isLineTooLong)
            socket.abort();
        if (isLineTooLong || isCancelled())
            return std::nullopt;
        if (!socket.waitForReadyRead(lookMs) && socket.state() != QLocalSocket::ConnectedState &&
            !socket.canReadLine())
            return std::nullopt;
    }
    QByteArray line = socket.readLine();
    line.chop(1);
    return line;
}

} // namespace host
