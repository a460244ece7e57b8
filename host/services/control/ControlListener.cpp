#include "ControlListener.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>

#include <algorithm>
#include <filesystem>

namespace host {

namespace {

// A slice of work and the rest before it, in milliseconds: under any load a third of a processor at most.
constexpr int restMs = 4;
constexpr int sliceMs = 2;
constexpr int changePeriodMs = 50;        // how soon a watcher sees a change
constexpr int listenPeriodMs = 500;       // how soon clients are accepted again after that has failed
constexpr int probeMs = 1'000;            // for somebody else at the socket to accept
constexpr std::size_t currentValues = 64; // told at a time
// Clients above the limit that are still being told so.
constexpr std::size_t mostTurnedAway = 32;

std::string namePath(const std::string& path) {
    return "control socket " + path;
}

} // namespace

ControlListener::ControlListener(ControlledHost& controlled, const ValueStore& store)
    : service(controlled, store,
              {[this](ClientId client, const QByteArray& line) { send(client, line); },
               [this](ClientId client) {
                   const ControlConnection* const connection = find(client);
                   return connection != nullptr && connection->hasRoom();
               },
               [this] {
                   QMetaObject::invokeMethod(
                       this, [this] { service.answerFinished(); }, Qt::QueuedConnection);
               },
               ControlService::Clock::now}) {
    workTimer.setSingleShot(true);
    connect(&workTimer, &QTimer::timeout, this, [this] { work(); });
    connect(&changeTimer, &QTimer::timeout, this, [this] {
        tellChanges();
        service.tellExchanges();
    });
    connect(&listenTimer, &QTimer::timeout, this, [this] { listenAgain(); });
}

ControlListener::~ControlListener() = default;

std::string ControlListener::listen(const std::string& path, std::size_t clients) {
    socketPath = path;
    mostClients = clients;
    std::string fault = open();
    if (!fault.empty())
        return fault;
    changeTimer.start(changePeriodMs);
    listenTimer.start(listenPeriodMs);
    return {};
}

// A host that was killed leaves its socket and its lock behind; both are replaced. The lock of a living one
// stands.
std::string ControlListener::open() {
    const std::filesystem::path file = std::filesystem::u8path(socketPath);
    std::error_code failure;
    const auto kind = std::filesystem::status(file, failure).type();
    if (kind != std::filesystem::file_type::not_found && kind != std::filesystem::file_type::socket)
        return namePath(socketPath) + ": there is something else of that name; choose another with --control";
    lock = std::make_unique<QLockFile>(QString::fromStdString(socketPath + ".lock"));
    lock->setStaleLockTime(0); // only by the end of its process
    if (!lock->tryLock(0)) {
        const bool isTaken = lock->error() == QLockFile::LockFailedError;
        lock.reset();
        return namePath(socketPath) + (isTaken
                                           ? " belongs to another sbus-host that runs this site"
                                           : " cannot be made: its directory is not there or not writable");
    }
    QLocalSocket probe;
    probe.connectToServer(QString::fromStdString(socketPath));
    if (probe.waitForConnected(probeMs)) {
        lock.reset();
        return namePath(socketPath) + " belongs to another program, which listens at it";
    }
    std::string fault = openServer();
    if (!fault.empty())
        lock.reset();
    return fault;
}

std::string ControlListener::openServer() {
    server = std::make_unique<QLocalServer>();
    server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server.get(), &QLocalServer::newConnection, this, [this] { acceptClients(); });
    if (server->listen(QString::fromStdString(socketPath)))
        return {};
    return namePath(socketPath) + " cannot be made: " + server->errorString().toStdString();
}

// The server closes itself when it cannot accept a client, which happens when the process has no descriptor
// left. It does not say so, but has an error text from then on.
void ControlListener::listenAgain() {
    if (!server->errorString().isEmpty())
        openServer();
}

void ControlListener::acceptClients() {
    while (QLocalSocket* const socket = server->nextPendingConnection())
        accept(socket);
}

void ControlListener::accept(QLocalSocket* socket) {
    if (connections.size() >= mostClients + mostTurnedAway) {
        delete socket;
        return;
    }
    const bool isTooMany = connections.size() >= mostClients;
    const ClientId client = ++lastClient;
    ControlConnection& connection =
        *connections.emplace(client, std::make_unique<ControlConnection>(client, socket, *this))
             .first->second;
    if (isTooMany)
        connection.endWith(errorReply(QJsonValue::Undefined, ReplyFault::Busy,
                                      std::to_string(mostClients) + " clients are connected already"));
}

void ControlListener::linesArrived(ClientId client) {
    queueWork(client);
}

void ControlListener::linesSent(ClientId client) {
    tellCurrentValues(client);
    queueWork(client);
}

void ControlListener::connectionEnded(ClientId client) {
    const auto found = connections.find(client);
    if (found == connections.end())
        return;
    service.forget(client);
    found->second.release()->deleteLater();
    connections.erase(found);
}

void ControlListener::queueWork(ClientId client) {
    ControlConnection* const connection = find(client);
    if (connection == nullptr || !connection->hasRoom() || !connection->hasLine())
        return;
    if (std::find(ready.begin(), ready.end(), client) == ready.end())
        ready.push_back(client);
    if (!workTimer.isActive())
        workTimer.start(restMs);
}

void ControlListener::work() {
    QElapsedTimer elapsed;
    elapsed.start();
    std::size_t handled = 0;
    while (!ready.empty() && (handled++ == 0 || elapsed.elapsed() < sliceMs)) {
        const ClientId client = ready.front();
        ready.pop_front();
        workFor(client);
    }
    if (!ready.empty())
        workTimer.start(restMs);
}

void ControlListener::workFor(ClientId client) {
    ControlConnection* const connection = find(client);
    const auto line = connection == nullptr ? std::nullopt : connection->takeLine();
    if (!line)
        return;
    if (line->isTooLong)
        service.handleTooLongLine(client);
    else
        service.handleLine(client, line->text);
    tellCurrentValues(client);
    if (connection->hasRoom() && connection->hasLine())
        ready.push_back(client);
}

// As much as the client reads; the rest when it has read that.
void ControlListener::tellCurrentValues(ClientId client) {
    ControlConnection* const connection = find(client);
    while (connection != nullptr && connection->hasRoom() &&
           service.tellCurrentValues(client, currentValues)) {
    }
}

// Behind changes that were missed, watchers are told all current values again.
void ControlListener::tellChanges() {
    service.tellChanges();
    for (const auto& [client, connection] : connections)
        if (service.isWatching(client))
            tellCurrentValues(client);
}

void ControlListener::send(ClientId client, const QByteArray& line) {
    if (ControlConnection* const connection = find(client))
        connection->send(line);
}

ControlConnection* ControlListener::find(ClientId client) {
    const auto found = connections.find(client);
    return found == connections.end() ? nullptr : found->second.get();
}

void ControlListener::end() {
    changeTimer.stop();
    listenTimer.stop();
    workTimer.stop();
    server->close();
    service.end();
    for (const auto& [client, connection] : connections)
        connection->endNow();
    connections.clear();
    server.reset();
    lock.reset();
}

} // namespace host
