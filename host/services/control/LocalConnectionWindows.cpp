#include "LocalConnection.h"

#include <QLocalSocket>

namespace host {

namespace {

constexpr int patienceMs = 5'000; // for a busy host

} // namespace

Connecting connectTo(QLocalSocket& socket, const std::string& path) {
    using End = Connecting::End;
    socket.connectToServer(QString::fromStdString(path));
    if (socket.waitForConnected(patienceMs))
        return {End::Connected, {}};
    const QLocalSocket::LocalSocketError error = socket.error();
    const bool isNobodyThere =
        error == QLocalSocket::ServerNotFoundError || error == QLocalSocket::ConnectionRefusedError;
    return {isNobodyThere                              ? End::NobodyThere
            : error == QLocalSocket::SocketAccessError ? End::NotPermitted
                                                       : End::Failed,
            socket.errorString().toStdString()};
}

} // namespace host
