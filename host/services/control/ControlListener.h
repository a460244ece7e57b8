#pragma once

#include "ControlConnection.h"
#include "ControlDoor.h"
#include "FileLock.h"
#include "ListeningSocket.h"

#include <QTimer>

#include <deque>
#include <unordered_map>

namespace host {

// Accepts the clients and shares the server's thread out among them: every few milliseconds a short slice of
// work, one line of each client in turn. So however many clients send however much, the thread rests most of
// the time, and each client gets its turn. Lives on the server's thread.
class ControlListener : public QObject, public ControlConnection::Owner {
public:
    ControlListener(ControlledHost& controlled, const ValueStore& store);
    ~ControlListener() override;

    // Empty, or why there is no listening: then nothing listens. From then on the socket is put back within a
    // second when somebody has removed it.
    std::string listen(const ControlDoor& controlDoor);
    // Tells who waits, and ends every connection.
    void end();

    void linesArrived(ClientId client) override;
    void linesSent(ClientId client) override;
    void connectionEnded(ClientId client) override;

private:
    using ConnectionPtr = std::unique_ptr<ControlConnection>;

    std::string open();
    void listenAgain();
    void accept(QLocalSocket* socket);
    void admit(ClientId client, ControlConnection& connection, Admission admission);
    bool endOldestIdle();
    void queueWork(ClientId client);
    void work();
    void workFor(ClientId client);
    void tellCurrentValues(ClientId client);
    void tellChanges();
    void send(ClientId client, const QByteArray& line);
    ControlConnection* find(ClientId client);

    ControlDoor door;
    std::unique_ptr<FileLock> lock; // held as long as this host serves the path
    ListeningSocket server;
    ControlService service;
    std::unordered_map<ClientId, ConnectionPtr> connections;
    ClientId lastClient = 0;
    std::deque<ClientId> ready; // have a line to be handled; each once
    QTimer workTimer{this};     // children: they change threads with this
    QTimer changeTimer{this};
    QTimer listenTimer{this};
};

} // namespace host
