#include "FakeHost.h"
#include "cli/ControlClient.h"
#include "services/control/ControlServer.h"
#include "services/control/ListeningSocket.h"

#include <QLocalSocket>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// The process may open so many descriptors and no more, until this ends.
class LowDescriptorLimit {
public:
    explicit LowDescriptorLimit(rlim_t most) {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
        rlimit low = before;
        low.rlim_cur = std::min(most, before.rlim_max);
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
    }
    LowDescriptorLimit(const LowDescriptorLimit&) = delete;
    LowDescriptorLimit& operator=(const LowDescriptorLimit&) = delete;
    ~LowDescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before); }

private:
    rlimit before{};
};

// Opens descriptors until none is left.
std::vector<int> useUpDescriptors() {
    std::vector<int> used;
    for (int next = 0; (next = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;)
        used.push_back(next);
    return used;
}

int connectTo(int socket, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

// A server, and a client that has its own descriptor already, in a process that has no other one left.
class ServerWithoutDescriptors : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(server.start(doorAt(path, 100)), "");
        low.emplace(256);
        client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        ASSERT_GE(client, 0);
        used = useUpDescriptors();
        ASSERT_FALSE(used.empty());
    }

    void TearDown() override {
        giveBack(used.size());
        close(client);
    }

    void giveBack(std::size_t count) {
        for (; count > 0; --count) {
            close(used.back());
            used.pop_back();
        }
    }

    // The system accepts the connection, whether the server can or not.
    void ask() const {
        constexpr char request[] = "{\"do\":\"status\"}\n";
        ASSERT_EQ(connectTo(client, path), 0);
        ASSERT_EQ(write(client, request, sizeof request - 1), static_cast<ssize_t>(sizeof request - 1));
    }

    // Empty when nothing comes within that time.
    std::string replyWithin(timeval patience) const {
        std::string reply(100, ' ');
        setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        const ssize_t size = read(client, reply.data(), reply.size());
        reply.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        return reply;
    }

private:
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const host::Site site = controlSite();
    FakeHost fake{site};
    host::ControlServer server{fake, fake.store};
    std::optional<LowDescriptorLimit> low;
    int client = -1;

protected:
    std::vector<int> used;
};

constexpr timeval patience{60, 0};
constexpr timeval shortWhile{0, 200'000};

} // namespace

TEST_F(ServerWithoutDescriptors, ListensAgainOnceThereAreSome) {
    ask();
    EXPECT_EQ(replyWithin(shortWhile), "");
    giveBack(used.size());
    EXPECT_THAT(replyWithin(patience), testing::StartsWith("{\"channels\"")); // who has waited is served
}

// Nobody makes room for a client that is not there.
TEST_F(ServerWithoutDescriptors, KeepsTheClientThatTookTheLastOne) {
    giveBack(1);
    ask();
    EXPECT_THAT(replyWithin(patience), testing::StartsWith("{\"channels\""));
}

TEST(ListeningSocketWithoutDescriptors, SaysSo) {
    const QTemporaryDir folder;
    host::ListeningSocket socket([](QLocalSocket*) {}, [] { return false; }, nullptr);
    const LowDescriptorLimit low(256);
    const std::vector<int> used = useUpDescriptors();
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const std::string told = socket.listen(path, std::nullopt);
    host::ControlClient client;
    const bool isConnected = client.connectTo({path});
    for (const int one : used)
        close(one);
    EXPECT_EQ(told, "Too many open files");
    EXPECT_FALSE(isConnected);
    EXPECT_THAT(client.faults(), testing::ElementsAre(testing::HasSubstr("Too many open files")));
}
