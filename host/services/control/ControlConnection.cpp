#include "ControlConnection.h"

#include <QLocalSocket>

namespace host {

namespace {

constexpr int endPatienceMs = 10'000; // for a client to read why it is dropped

} // namespace

ControlConnection::ControlConnection(ClientId ownId, QLocalSocket* clientSocket, Owner& connectionOwner)
    : id(ownId), socket(clientSocket), owner(connectionOwner) {
    socket->setParent(this);
    socket->setReadBufferSize(longestRequestLine); // beyond, the client waits
    endTimer.setSingleShot(true);
    // Queued: the owner is free to delete this connection.
    const auto queued = Qt::QueuedConnection;
    connect(
        socket, &QLocalSocket::readyRead, this, [this] { arrived(); }, queued);
    connect(
        socket, &QLocalSocket::bytesWritten, this, [this] { sent(); }, queued);
    connect(
        socket, &QLocalSocket::disconnected, this, [this] { owner.connectionEnded(id); }, queued);
    connect(
        &endTimer, &QTimer::timeout, this, [this] { owner.connectionEnded(id); }, queued);
}

ControlConnection::~ControlConnection() {
    socket->disconnect(this);
    socket->abort();
}

void ControlConnection::arrived() {
    lastBytes = std::chrono::steady_clock::now();
    if (isEnding) {
        socket->readAll(); // so that the end of the connection can be seen behind it
        return;
    }
    readNextLine();
    if (cutter.hasLine())
        owner.linesArrived(id);
}

// While a line waits to be handled nothing is read; what then fills the socket's buffer makes the client
// wait.
void ControlConnection::readNextLine() {
    if (!cutter.hasLine())
        cutter.append(socket->readAll());
}

bool ControlConnection::hasLine() {
    return !isEnding && cutter.hasLine();
}

std::optional<LineCutter::Line> ControlConnection::takeLine() {
    auto line = cutter.next();
    readNextLine();
    return line;
}

void ControlConnection::send(const QByteArray& line) {
    if (isEnding)
        return;
    if (unsentBytes > mostUnsentBytes) {
        endWith(errorReply(QJsonValue::Undefined, ReplyFault::Busy,
                           "this connection is ended: more than " + std::to_string(mostUnsentBytes) +
                               " bytes wait for you to read them"));
        return;
    }
    unsent.push_back(line);
    unsentBytes += line.size();
    feedSocket();
}

bool ControlConnection::hasRoom() const {
    return unsentBytes + socket->bytesToWrite() <= roomBytes;
}

bool ControlConnection::isQuiet() {
    return !isEnding && !hasLine() && unsent.empty() && socket->bytesToWrite() == 0 &&
           socket->bytesAvailable() == 0;
}

void ControlConnection::feedSocket() {
    while (!unsent.empty() && socket->bytesToWrite() < roomBytes) {
        socket->write(unsent.front() + '\n');
        unsentBytes -= unsent.front().size();
        unsent.pop_front();
    }
    if (isEnding && unsent.empty())
        socket->disconnectFromServer(); // sends what the socket holds first
}

void ControlConnection::sent() {
    lastBytes = std::chrono::steady_clock::now();
    feedSocket();
    if (!isEnding && hasRoom())
        owner.linesSent(id);
}

void ControlConnection::endWith(const QByteArray& lastLine) {
    if (isEnding)
        return;
    isEnding = true;
    unsent.assign(1, lastLine);
    unsentBytes = lastLine.size();
    endTimer.start(endPatienceMs);
    feedSocket();
}

void ControlConnection::endNow() {
    isEnding = true;
    for (const QByteArray& line : unsent)
        socket->write(line + '\n');
    unsent.clear();
    socket->flush();
    socket->disconnect(this);
    socket->abort();
}

} // namespace host
