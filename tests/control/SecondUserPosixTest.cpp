#include "SecondUserPosix.h"
#include "FakeHost.h"
#include "cli/ControlClient.h"
#include "services/control/ControlServer.h"
#include "services/control/PrivateDirectory.h"
#include "services/control/SocketPath.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

// What two users of one machine see of each other's sockets and folders.

using namespace host;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

// Listens at a path as the second user, until this ends.
class Impostor {
public:
    explicit Impostor(const std::string& path) {
        int ready[2] = {};
        EXPECT_EQ(pipe(ready), 0);
        const sockaddr_un address = addressOf(path);
        child = fork();
        if (child == 0) {
            const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
            const bool isListening =
                (!seconduser::isReal() || setuid(seconduser::id) == 0) &&
                bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                chmod(address.sun_path, 0777) == 0 && listen(socket, 10) == 0;
            if (!isListening || write(ready[1], "x", 1) != 1)
                _exit(1);
            for (;;)
                pause();
        }
        close(ready[1]);
        char byte = 0;
        EXPECT_EQ(read(ready[0], &byte, 1), 1);
        close(ready[0]);
    }
    Impostor(const Impostor&) = delete;
    Impostor& operator=(const Impostor&) = delete;
    ~Impostor() {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }

private:
    pid_t child = -1;
};

class SecondUser : public testing::Test {
protected:
    SecondUser() { EXPECT_EQ(chmod(folder.path().toLocal8Bit().constData(), 0777), 0); }

    ControlDoor door() const {
        ControlDoor wanted = doorAt(path);
        wanted.user = seconduser::firstUser();
        return wanted;
    }
    // As the second user: whether the first line that comes after `request` contains `expected`.
    bool isTold(const char* request, const char* expected) {
        const sockaddr_un address = addressOf(path);
        const int end = seconduser::run([&] {
            const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
            if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
                return 2;
            send(socket, request, strlen(request), MSG_NOSIGNAL);
            char line[4096] = {};
            std::size_t filled = 0;
            for (ssize_t size = 0; filled < sizeof line - 1 && strchr(line, '\n') == nullptr;
                 filled += static_cast<std::size_t>(size))
                if ((size = read(socket, line + filled, sizeof line - 1 - filled)) <= 0)
                    break;
            return strstr(line, expected) != nullptr ? 0 : 1;
        });
        EXPECT_NE(end, -1);
        EXPECT_NE(end, 2) << "it could not connect";
        return end == 0;
    }

    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const Site site = controlSite();
    FakeHost fake{site};
    ControlServer server{fake, fake.store};
};

} // namespace

TEST_F(SecondUser, IsNotBelievedWhenItListensWhereAHostWould) {
    const Impostor impostor(path);
    ControlClient client([](const Peer& peer) { return isUserOrRoot(peer, seconduser::firstUser()); });
    EXPECT_FALSE(client.connectTo({path}));
    EXPECT_THAT(client.faults(), ElementsAre(AllOf(HasSubstr(path), HasSubstr("which is not believed"))));
}

TEST_F(SecondUser, IsToldThatTheSocketIsNotForIt) {
    ASSERT_EQ(server.start(door()), "");
    ASSERT_EQ(chmod(path.c_str(), 0666), 0); // somebody has opened it by hand
    EXPECT_TRUE(isTold("{\"do\":\"status\"}\n", "\"code\":\"permission\""));
    EXPECT_TRUE(fake.commands().empty());
}

TEST_F(SecondUser, MayReadAsAMemberOfAGroupThatMay) {
    ControlDoor open = door();
    open.group = AdmittedGroup{seconduser::itsGroup(), ControlAccess::Read};
    ASSERT_EQ(server.start(open), "");
    EXPECT_TRUE(isTold("{\"do\":\"status\"}\n", "\"ok\":true"));
    EXPECT_TRUE(isTold("{\"do\":\"poll\"}\n", "\"code\":\"permission\""));
    EXPECT_TRUE(fake.polls().empty());
}

TEST_F(SecondUser, MayCommandAsAMemberOfAGroupThatMay) {
    ControlDoor open = door();
    open.group = AdmittedGroup{seconduser::itsGroup(), ControlAccess::Commands};
    ASSERT_EQ(server.start(open), "");
    EXPECT_TRUE(isTold("{\"do\":\"write\",\"values\":[{\"point\":\"hill/RUN\",\"value\":1}]}\n", "success"));
    struct stat found {};
    ASSERT_EQ(stat(path.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 07777, 0660U);
    EXPECT_EQ(found.st_gid, seconduser::itsGroup());
}

// Outside of tests the socket's mode keeps it out already.
TEST_F(SecondUser, IsKeptOutByAGroupThatIsNotIts) {
    ControlDoor open = door();
    open.group = AdmittedGroup{seconduser::foreignGroup(), ControlAccess::Commands};
    // Who is not root cannot give the socket away: there it is the door without a group that keeps it out.
    ASSERT_EQ(server.start(seconduser::isReal() ? open : door()), "");
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    EXPECT_TRUE(isTold("{\"do\":\"status\"}\n", "\"code\":\"permission\""));
}

TEST_F(SecondUser, HearsOfPermissionNotOfAnAbsentHost) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(path);
    ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(socket, 10), 0);
    ASSERT_EQ(chmod(path.c_str(), 0), 0); // root alone gets in
    EXPECT_EQ(seconduser::run([this] {
                  ControlClient client;
                  const bool isConnected = client.connectTo({path});
                  const bool isClear = client.faults().size() == 1 &&
                                       client.faults()[0].find("permission denied") != std::string::npos;
                  return !isConnected && isClear ? 0 : 1;
              }),
              0);
    close(socket);
}

TEST_F(SecondUser, HasAFolderThatIsPassedOver) {
    const QString own = folder.filePath(QStringLiteral("its"));
    ASSERT_EQ(mkdir(own.toLocal8Bit().constData(), 0700), 0);
    // Where this process cannot give a folder away, root's own is somebody else's.
    std::string its = "/usr";
    if (seconduser::isReal()) {
        its = own.toStdString();
        ASSERT_EQ(chown(its.c_str(), seconduser::id, seconduser::id), 0);
    }
    EXPECT_EQ(findDirectory(its).state, DirectoryState::SomebodyElse);
    EXPECT_THAT(findDirectory(its).fault, HasSubstr("belongs to another user"));
    EXPECT_THAT(makePrivateDirectory(its), HasSubstr("belongs to another user"));

    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(its));
    EXPECT_EQ(controlSocketPaths("site.toml").size(), 1U);
    before.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", before);
}

TEST_F(SecondUser, MayEnterAFolderThatIsMadeForItsGroup) {
    const std::string shared = folder.filePath(QStringLiteral("shared")).toStdString();
    ASSERT_EQ(makePrivateDirectory(shared, seconduser::itsGroup()), "");
    struct stat found {};
    ASSERT_EQ(stat(shared.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 07777, 0750U);
    EXPECT_EQ(found.st_gid, seconduser::itsGroup());
    EXPECT_EQ(seconduser::run([&] { return access(shared.c_str(), X_OK); }), 0);
}
