#include "Crowd.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalSocket>

#include <algorithm>

namespace {

constexpr int patienceMs = 100'000;

const std::vector<QByteArray> rubbish = {"",
                                         "rubbish",
                                         "{\"do\":",
                                         "[1,2,3]",
                                         "{}",
                                         "{\"do\":\"fly\"}",
                                         QByteArray("\0\xff\n", 2),
                                         QByteArray(70'000, '{')};

} // namespace

struct Crowd::Client {
    Kind kind = Kind::Silent;
    std::size_t repliesLeft = 0;
    QLocalSocket socket;
};

Crowd::Crowd(const std::string& socketPath, std::size_t size) : path(socketPath) {
    const Kind kinds[] = {Kind::Silent, Kind::Asking, Kind::Rubbish, Kind::Asking};
    for (std::size_t i = 0; i < size; ++i) {
        clients.push_back(std::make_unique<Client>());
        clients.back()->kind = kinds[i % 4];
    }
}

Crowd::~Crowd() = default;

bool Crowd::connectAll() {
    return std::all_of(clients.begin(), clients.end(), [this](const auto& client) {
        client->socket.connectToServer(QString::fromStdString(path));
        return client->socket.waitForConnected(patienceMs);
    });
}

void Crowd::sendAll(const QByteArray& request) {
    for (const auto& client : clients) {
        if (client->kind == Kind::Silent)
            continue;
        const bool isAsking = client->kind == Kind::Asking;
        const std::vector<QByteArray> lines = isAsking ? std::vector<QByteArray>{request} : rubbish;
        for (const QByteArray& line : lines)
            client->socket.write(line + '\n');
        client->repliesLeft += lines.size();
        (isAsking ? requestCount : rubbishCount) += lines.size();
    }
}

void Crowd::read(Client& client) {
    while (client.socket.canReadLine()) {
        const QByteArray line = client.socket.readLine();
        ++(line.contains("\"code\":\"malformed\"") ? errorCount : goodCount);
        if (client.repliesLeft > 0)
            --client.repliesLeft;
    }
}

bool Crowd::waitForReplies() {
    QElapsedTimer elapsed;
    elapsed.start();
    const auto isServed = [this](const auto& client) {
        read(*client);
        return client->repliesLeft == 0;
    };
    while (!std::all_of(clients.begin(), clients.end(), isServed)) {
        if (elapsed.elapsed() > patienceMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
    return true;
}

bool Crowd::isWhole() const {
    return std::all_of(clients.begin(), clients.end(), [](const auto& client) {
        return client->socket.state() == QLocalSocket::ConnectedState;
    });
}
