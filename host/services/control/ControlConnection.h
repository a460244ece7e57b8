#pragma once

#include "ControlService.h"
#include "LineCutter.h"

#include <QTimer>

#include <chrono>
#include <deque>

class QLocalSocket;

namespace host {

// One client's connection: its lines in, the lines for it out, each side bounded. Lives on the server's
// thread. States: open, ending (what is left is sent, nothing is read any more), ended.
class ControlConnection : public QObject {
public:
    // Called on the server's thread, never from within a call of the connection's own.
    class Owner {
    public:
        Owner() = default;
        Owner(const Owner&) = delete;
        Owner& operator=(const Owner&) = delete;
        virtual ~Owner() = default;

        virtual void linesArrived(ClientId client) = 0;
        virtual void linesSent(ClientId client) = 0; // there is room for more
        virtual void connectionEnded(ClientId client) = 0;
    };

    // Takes the socket over.
    ControlConnection(ClientId ownId, QLocalSocket* clientSocket, Owner& connectionOwner);
    ~ControlConnection() override;

    bool hasLine();
    std::optional<LineCutter::Line> takeLine();

    // Drops a client that has left more than mostUnsentBytes unread.
    void send(const QByteArray& line);
    // Little enough waits to be sent for more to be made.
    bool hasRoom() const;
    // Nothing waits in either direction, and since when.
    bool isQuiet();
    std::chrono::steady_clock::time_point quietSince() const { return lastBytes; }
    // Sends this instead of all that waits, then ends the connection.
    void endWith(const QByteArray& lastLine);
    // Gives away at once what the system takes, and ends.
    void endNow();

    static constexpr int mostUnsentBytes = 1024 * 1024;
    static constexpr int roomBytes = 64 * 1024; // with more unsent, no request of the client is carried out

private:
    void readNextLine();
    void feedSocket();
    void arrived();
    void sent();

    const ClientId id;
    QLocalSocket* const socket; // its parent is this
    Owner& owner;
    LineCutter cutter{longestRequestLine};
    std::deque<QByteArray> unsent;
    int unsentBytes = 0;
    bool isEnding = false;
    std::chrono::steady_clock::time_point lastBytes = std::chrono::steady_clock::now();
    QTimer endTimer{this};
};

} // namespace host
