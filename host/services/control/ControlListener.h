#pragma once

#include "ControlConnection.h"

#include <QLockFile>
#include <QTimer>

#include <deque>
#include <unordered_map>

class QLocalServer;

namespace host {

// Accepts the clients and shares the server's thread out among them: every few milliseconds a short slice of
// work, one line of each client in turn. So however many clients send however much, the thread rests most of
// the time, and each client gets its turn. Lives on the server's thread.
class ControlListener : public QObject, public ControlConnection::Owner {
public:
    ControlListener(ControlledHost& controlled, const ValueStore& store);
    ~ControlListener() override;

    // Empty, or why there is no listening: then nothing listens.
    std::string listen(const std::string& path, std::size_t clients);
    // Tells who waits, and ends every connection.
    void end();

    void linesArrived(ClientId client) override;
    void linesSent(ClientId client) override;
    void connectionEnded(ClientId client) override;

private:
    using ConnectionPtr = std::unique_ptr<ControlConnection>;

    std::string open();
    std::string openServer();
    void listenAgain();
    void acceptClients();
    void accept(QLocalSocket* socket);
    void queueWork(ClientId client);
    void work();
    void workFor(ClientId client);
    void tellCurrentValues(ClientId client);
    void tellChanges();
    void send(ClientId client, const QByteArray& line);
    ControlConnection* find(ClientId client);

    std::string socketPath;
    std::size_t mostClients = 0;
    std::unique_ptr<QLockFile> lock; // held as long as this host serves the path
    std::unique_ptr<QLocalServer> server;
    ControlService service;
    std::unordered_map<ClientId, ConnectionPtr> connections;
    ClientId lastClient = 0;
    std::deque<ClientId> ready; // have a line to be handled; each once
    QTimer workTimer{this};     // children: they change threads with this
    QTimer changeTimer{this};
    QTimer listenTimer{this};
};

} // namespace host
