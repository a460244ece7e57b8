#include "ControlClient.h"

#include <algorithm>

namespace host {

namespace {

constexpr int patienceMs = 5'000; // for a busy host to accept, and to take a line
constexpr int lookMs = 100;       // how soon a cancellation is seen

} // namespace

bool ControlClient::connectTo(const std::vector<std::string>& paths) {
    return std::any_of(paths.begin(), paths.end(), [this](const std::string& path) {
        socket.abort();
        socket.connectToServer(QString::fromStdString(path));
        return socket.waitForConnected(patienceMs);
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
        if (isCancelled())
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
