#include "ListeningSocket.h"

#include <QLocalServer>
#include <QLocalSocket>

namespace host {

struct ListeningSocket::Open {
    QLocalServer server;
};

ListeningSocket::ListeningSocket(Take takeClient, MakeRoom makeRoomForClients, QObject* owner)
    : QObject(owner), take(std::move(takeClient)), makeRoom(std::move(makeRoomForClients)) {}

ListeningSocket::~ListeningSocket() {
    close();
}

std::string ListeningSocket::listen(const std::string& path, std::optional<GroupId>) {
    close();
    auto opened = std::make_unique<Open>();
    opened->server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&opened->server, &QLocalServer::newConnection, this, [this] { acceptClients(); });
    if (!opened->server.listen(QString::fromStdString(path)))
        return opened->server.errorString().toStdString();
    open = std::move(opened);
    return {};
}

void ListeningSocket::acceptClients() {
    while (QLocalSocket* const client = open ? open->server.nextPendingConnection() : nullptr) {
        client->setParent(nullptr);
        take(client);
    }
}

// Pipes lie in no folder.
bool ListeningSocket::isInPlace() const {
    return open && open->server.isListening();
}

void ListeningSocket::resume() {}

void ListeningSocket::close() {
    open.reset();
}

} // namespace host
