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
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int patienceMs = 60'000;

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

} // namespace

TEST(ServerWithoutDescriptors, ListensAgainOnceThereAreSome) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const host::Site site = controlSite();
    FakeHost fake(site);
    host::ControlServer server(fake, fake.store);
    ASSERT_EQ(server.start(doorAt(path, 100)), "");

    const LowDescriptorLimit low(256);
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(client, 0);
    const std::vector<int> used = useUpDescriptors();
    ASSERT_FALSE(used.empty());
    ASSERT_EQ(connectTo(client, path), 0); // the system accepts it, the server cannot
    constexpr char request[] = "{\"do\":\"status\"}\n";
    ASSERT_EQ(write(client, request, sizeof request - 1), static_cast<ssize_t>(sizeof request - 1));
    const timeval shortWhile{0, 200'000};
    setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &shortWhile, sizeof shortWhile);
    char byte = 0;
    EXPECT_LT(read(client, &byte, 1), 0);
    for (const int one : used)
        close(one);
    const timeval patience{patienceMs / 1'000, 0};
    setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    EXPECT_EQ(read(client, &byte, 1), 1); // who has waited is served
    close(client);
}

// Nobody makes room for a client that is not there.
TEST(ServerWithoutDescriptors, KeepsTheClientThatTookTheLastOne) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const host::Site site = controlSite();
    FakeHost fake(site);
    host::ControlServer server(fake, fake.store);
    ASSERT_EQ(server.start(doorAt(path, 100)), "");

    const LowDescriptorLimit low(256);
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(client, 0);
    std::vector<int> used = useUpDescriptors();
    ASSERT_FALSE(used.empty());
    close(used.back());
    used.pop_back();
    ASSERT_EQ(connectTo(client, path), 0);
    const timeval patience{patienceMs / 1'000, 0};
    setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    constexpr char request[] = "{\"do\":\"status\"}\n";
    ASSERT_EQ(write(client, request, sizeof request - 1), static_cast<ssize_t>(sizeof request - 1));
    std::string reply(100, ' ');
    EXPECT_GT(read(client, reply.data(), reply.size()), 0);
    EXPECT_THAT(reply, testing::StartsWith("{\"channels\""));
    for (const int one : used)
        close(one);
    close(client);
}

TEST(ServerWithoutDescriptors, SaysSo) {
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
