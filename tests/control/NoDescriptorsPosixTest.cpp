#include "FakeHost.h"
#include "cli/ControlClient.h"
#include "services/control/ControlServer.h"
#include "services/control/DescriptorLimit.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
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

TEST(DescriptorLimit, IsRaisedAsFarAsTheSystemLets) {
    const LowDescriptorLimit low(128);
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(limit.rlim_cur, 128U);
    const std::size_t wanted = std::min<rlim_t>(256, limit.rlim_max);
    EXPECT_EQ(host::raiseDescriptorLimit(wanted), wanted);
    getrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(limit.rlim_cur, wanted);
    EXPECT_EQ(host::raiseDescriptorLimit(100), 100U); // never lowered
    getrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(limit.rlim_cur, wanted);
}

TEST(ServerWithoutDescriptors, ListensAgainOnceThereAreSome) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const host::Site site = controlSite();
    FakeHost fake(site);
    host::ControlServer server(fake, fake.store);
    ASSERT_EQ(server.start(path, 100), "");

    const LowDescriptorLimit low(256);
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(client, 0);
    const std::vector<int> used = useUpDescriptors();
    ASSERT_FALSE(used.empty());
    ASSERT_EQ(connectTo(client, path), 0); // the system accepts it, the server cannot
    QElapsedTimer elapsed;
    elapsed.start();
    char byte = 0;
    EXPECT_LE(read(client, &byte, 1), 0); // its end tells that the server has failed to accept
    for (const int one : used)
        close(one);
    close(client);

    bool isServed = false;
    while (!isServed && elapsed.elapsed() < patienceMs) {
        host::ControlClient later;
        isServed = later.connectTo({path}) && later.send(R"({"do":"status"})") &&
                   later.nextLine([&elapsed] { return elapsed.elapsed() > patienceMs; }).has_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_TRUE(isServed);
}
