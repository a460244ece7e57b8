#pragma once

#include <QByteArray>

#include <memory>
#include <string>
#include <vector>

class QLocalSocket;

// Many clients at one control socket: one of four is silent, one of four sends rubbish, the others make
// requests.
class Crowd {
public:
    Crowd(const std::string& socketPath, std::size_t size);
    ~Crowd();

    bool connectAll();
    // `request` from each client that makes requests; lines of rubbish of every kind from those that do not.
    void sendAll(const QByteArray& request);
    // Whether every request and every line of rubbish has got its reply.
    bool waitForReplies();

    std::size_t goodRequests() const { return requestCount; }
    std::size_t rubbishLines() const { return rubbishCount; }
    std::size_t goodReplies() const { return goodCount; }
    std::size_t errorReplies() const { return errorCount; }
    bool isWhole() const; // nobody has lost the connection

private:
    enum class Kind { Silent, Rubbish, Asking };
    struct Client;

    void read(Client& client);

    const std::string path;
    std::vector<std::unique_ptr<Client>> clients;
    std::size_t requestCount = 0;
    std::size_t rubbishCount = 0;
    std::size_t goodCount = 0;
    std::size_t errorCount = 0;
};
