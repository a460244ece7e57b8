#include "ControlListener.h"

#include "LocalConnection.h"
#include "PrivateDirectory.h"

#include <QElapsedTimer>
#include <QLocalSocket>

#include <algorithm>
#include <filesystem>

namespace host {

namespace {

// A slice of work and the rest before it, in milliseconds: under any load a third of a processor at most.
constexpr int restMs = 4;
constexpr int sliceMs = 2;
constexpr int changePeriodMs = 50;        // how soon a watcher sees a change
constexpr int listenPeriodMs = 500;       // how soon a socket that was removed is put back
constexpr std::size_t currentValues = 64; // told at a time
// Clients above the limit that are still being told so.
constexpr std::size_t mostTurnedAway = 32;

std::string namePath(const std::string& path) {
    return "control socket " + path;
}

std::string directoryOf(const std::string& path) {
    return std::filesystem::u8path(path).parent_path().u8string();
}

} // namespace

ControlListener::ControlListener(ControlledHost& controlled, const ValueStore& store)
    : server([this](QLocalSocket* socket) { accept(socket); }, [this] { return endOldestIdle(); }, this),
      service(controlled, store,
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

std::string ControlListener::listen(const ControlDoor& controlDoor) {
    door = controlDoor;
    std::string fault = open();
    if (!fault.empty())
        return fault;
    changeTimer.start(changePeriodMs);
    listenTimer.start(listenPeriodMs);
    return {};
}

// A host that was killed leaves its socket and its lock's file behind; both are replaced. The lock of a
// living one stands.
std::string ControlListener::open() {
    const std::string name = namePath(door.path);
    if (!ListeningSocket::isFreeOrSocket(door.path))
        return name + ": there is something else of that name; choose another with --control";
    FileLock::Taken taken = FileLock::take(door.path + ".lock");
    if (taken.isTakenByAnother)
        return name + " belongs to another sbus-host that runs this site";
    if (!taken.lock)
        return name + " cannot be made: its lock " + door.path + ".lock: " + taken.fault;
    QLocalSocket probe;
    if (connectTo(probe, door.path).end == Connecting::End::Connected)
        return name + " belongs to another program, which listens at it";
    const std::string fault = server.listen(door.path, door.groupId());
    if (!fault.empty())
        return name + " cannot be made: " + fault;
    lock = std::move(taken.lock);
    return {};
}

// Clients that are connected stay so. Where another host has put its socket in the meantime, it keeps it.
void ControlListener::listenAgain() {
    if (server.isInPlace())
        return server.resume();
    lock.reset();
    if (door.isDirectoryOwn)
        makePrivateDirectory(directoryOf(door.path), door.groupId());
    open();
}

void ControlListener::accept(QLocalSocket* socket) {
    const Admission admission = judgeClient(peerOf(*socket), door.user, door.group);
    if (connections.size() >= door.clients + mostTurnedAway) {
        delete socket;
        return;
    }
    // Nobody makes room for who is not let in.
    const bool isTooMany =
        connections.size() >= door.clients && (admission == Admission::Refused || !endOldestIdle());
    const ClientId client = ++lastClient;
    ControlConnection& connection =
        *connections.emplace(client, std::make_unique<ControlConnection>(client, socket, *this))
             .first->second;
    if (isTooMany)
        connection.endWith(errorReply(QJsonValue::Undefined, ReplyFault::Busy,
                                      std::to_string(door.clients) + " clients are connected already"));
    else
        admit(client, connection, admission);
}

void ControlListener::admit(ClientId client, ControlConnection& connection, Admission admission) {
    if (admission == Admission::Refused)
        connection.endWith(errorReply(QJsonValue::Undefined, ReplyFault::Permission,
                                      "permission denied: this host takes commands from its own user" +
                                          std::string(door.group ? " and from members of its group" : "")));
    else if (admission == Admission::Reads)
        service.allowReadingAlone(client);
}

// Who asks for nothing and waits for nothing makes room for who may.
bool ControlListener::endOldestIdle() {
    const auto isOlder = [this](const auto& one, const auto& other) {
        const bool isIdle = one.second->isQuiet() && !service.isServing(one.first);
        const bool isOtherIdle = other.second->isQuiet() && !service.isServing(other.first);
        return isIdle != isOtherIdle ? isIdle : one.second->quietSince() < other.second->quietSince();
    };
    const auto oldest = std::min_element(connections.begin(), connections.end(), isOlder);
    if (oldest == connections.end() || !oldest->second->isQuiet() || service.isServing(oldest->first))
        return false;
    oldest->second->send(errorReply(QJsonValue::Undefined, ReplyFault::Busy,
                                    "this connection is ended: it was idle, and others want to connect"));
    oldest->second->endNow();
    connectionEnded(oldest->first);
    return true;
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
    server.close();
    service.end();
    for (const auto& [client, connection] : connections)
        connection->endNow();
    connections.clear();
    lock.reset();
}

} // namespace host
