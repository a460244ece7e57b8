#include "runtime/AccountsWindows.h"
#include "services/control/FileLock.h"
#include "services/control/ListeningSocket.h"
#include "services/control/LocalConnection.h"
#include "services/control/SocketPath.h"

#include <QCoreApplication>
#include <QLocalSocket>
#include <QUuid>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

using host::Connecting;
using host::ListeningSocket;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr int patienceMs = 10'000;

class ControlPipe : public testing::Test {
protected:
    bool accepts(std::size_t count) {
        for (int waited = 0; clients.size() < count && waited < patienceMs; waited += 10) {
            QCoreApplication::processEvents();
            Sleep(10);
        }
        return clients.size() == count;
    }

    Connecting connectOne() {
        ends.push_back(std::make_unique<QLocalSocket>());
        return host::connectTo(*ends.back(), path);
    }

    const std::string path =
        R"(\\.\pipe\sbus-host-test-)" + QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
    std::vector<std::unique_ptr<QLocalSocket>> ends;
    std::vector<std::unique_ptr<QLocalSocket>> clients;
    ListeningSocket socket{[this](QLocalSocket* client) { clients.emplace_back(client); },
                           [] { return false; }, nullptr};
};

HANDLE handleOf(const QLocalSocket& socket) {
    return reinterpret_cast<HANDLE>(socket.socketDescriptor());
}

std::string accessListOf(HANDLE pipe) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    char* text = nullptr;
    EXPECT_EQ(GetSecurityInfo(pipe, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                              nullptr, &descriptor),
              DWORD{ERROR_SUCCESS});
    EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1,
                                                                   DACL_SECURITY_INFORMATION, &text, nullptr),
              0);
    std::string found = text == nullptr ? "" : text;
    LocalFree(text);
    LocalFree(descriptor);
    return found;
}

} // namespace

TEST_F(ControlPipe, CarriesLinesBothWays) {
    ASSERT_EQ(socket.listen(path, std::nullopt), "");
    ASSERT_EQ(connectOne().end, Connecting::End::Connected);
    ASSERT_TRUE(accepts(1));
    ends[0]->write("status\n");
    ASSERT_TRUE(clients[0]->waitForReadyRead(patienceMs));
    EXPECT_EQ(clients[0]->readLine(), "status\n");
    clients[0]->write("good\n");
    ASSERT_TRUE(ends[0]->waitForReadyRead(patienceMs));
    EXPECT_EQ(ends[0]->readLine(), "good\n");
}

TEST_F(ControlPipe, HasAnEndForEachClient) {
    ASSERT_EQ(socket.listen(path, std::nullopt), "");
    for (std::size_t count = 1; count <= 20; ++count) {
        ASSERT_EQ(connectOne().end, Connecting::End::Connected) << count;
        ASSERT_TRUE(accepts(count));
    }
}

TEST_F(ControlPipe, AdmitsItsUserTheSystemAndAdministratorsAlone) {
    ASSERT_EQ(socket.listen(path, std::nullopt), "");
    ASSERT_EQ(connectOne().end, Connecting::End::Connected);
    const std::string list = accessListOf(handleOf(*ends[0]));
    EXPECT_THAT(list, HasSubstr("(D;;"));
    EXPECT_THAT(list, HasSubstr(";;;NU)")) << "who comes over the network";
    EXPECT_THAT(list, HasSubstr(";;;SY)"));
    EXPECT_THAT(list, HasSubstr(";;;BA)"));
    EXPECT_THAT(list, Not(HasSubstr(";;;WD)"))) << "everybody";
    EXPECT_EQ(std::count(list.begin(), list.end(), '('), 4) << list;
}

TEST_F(ControlPipe, BelongsToWhomItsClientsKnowForThemselves) {
    ASSERT_EQ(socket.listen(path, std::nullopt), "");
    ASSERT_EQ(connectOne().end, Connecting::End::Connected);
    EXPECT_EQ(host::accounts::ownerOfPipe(handleOf(*ends[0])), host::accounts::ownSid());
    const std::optional<host::Peer> server = host::peerOf(*ends[0]);
    ASSERT_TRUE(server);
    EXPECT_EQ(server->user, host::ownUser());
}

TEST_F(ControlPipe, IsNotMadeWhereSomebodyHasOneOfItsName) {
    const std::wstring name(path.begin(), path.end());
    const HANDLE squatter = CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE,
                                             PIPE_UNLIMITED_INSTANCES, 0, 0, 0, nullptr);
    ASSERT_NE(squatter, INVALID_HANDLE_VALUE);
    EXPECT_THAT(socket.listen(path, std::nullopt), HasSubstr("another program"));
    CloseHandle(squatter);
    EXPECT_EQ(socket.listen(path, std::nullopt), "");
}

TEST_F(ControlPipe, IsNotFoundWhileNobodyListens) {
    EXPECT_EQ(connectOne().end, Connecting::End::NobodyThere);
    ASSERT_EQ(socket.listen(path, std::nullopt), "");
    socket.close();
    EXPECT_EQ(connectOne().end, Connecting::End::NobodyThere);
}

TEST_F(ControlPipe, IsLockedByOneHostAtATime) {
    host::FileLock::Taken first = host::FileLock::take(path + ".lock");
    ASSERT_TRUE(first.lock) << first.fault;
    EXPECT_TRUE(host::FileLock::take(path + ".lock").isTakenByAnother);
    first.lock.reset();
    EXPECT_TRUE(host::FileLock::take(path + ".lock").lock);
}

TEST(ControlPipePath, IsTheSameForEveryUserOfASite) {
    const std::vector<std::string> paths = host::controlSocketPaths("C:/plant/site.toml");
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_THAT(paths[0], StartsWith(R"(\\.\pipe\sbus-host-site-)"));
    EXPECT_EQ(host::findControlSockets("C:/plant/site.toml").paths, paths);
    EXPECT_EQ(host::prepareControlSocketPlace("C:/plant/site.toml").path, paths[0]);
}

TEST(ControlPipePath, MayBeAPipesOwnName) {
    EXPECT_EQ(host::fullSocketPath(R"(\\.\pipe\mine)"), R"(\\.\pipe\mine)");
}
