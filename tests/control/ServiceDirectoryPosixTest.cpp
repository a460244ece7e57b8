#include "services/control/ServiceDirectory.h"
#include "services/control/SocketPath.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::findServiceDirectory;
using host::ownServiceDirectory;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr auto userAlone = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

// A folder of services that belongs to the test's own user, in root's place.
class ServiceDirectory : public testing::Test {
protected:
    ServiceDirectory() {
        EXPECT_TRUE(QDir().mkpath(folder.filePath(QStringLiteral("plant"))));
        QFile::setPermissions(folder.path(), userAlone | QFile::ReadOther | QFile::ExeOther);
    }
    void TearDown() override {
        before.isNull() ? qunsetenv("RUNTIME_DIRECTORY") : qputenv("RUNTIME_DIRECTORY", before);
    }

    std::optional<host::ServiceDirectory> find(const char* site) const {
        return findServiceDirectory(site, parent, host::ownUser());
    }

    const QByteArray before = qgetenv("RUNTIME_DIRECTORY");
    const QTemporaryDir folder;
    const std::string parent = folder.path().toStdString();
};

} // namespace

TEST_F(ServiceDirectory, IsNamedAfterTheSiteFile) {
    const auto found = find("/etc/sbus/plant.toml");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, parent + "/plant");
    EXPECT_EQ(found->user, host::ownUser());
    EXPECT_FALSE(find("/etc/sbus/other.toml"));
}

TEST_F(ServiceDirectory, CountsInAFolderOfRootsAlone) {
    EXPECT_FALSE(findServiceDirectory("/etc/sbus/plant.toml", parent, host::ownUser() + 1));
    QFile::setPermissions(folder.path(), userAlone | QFile::WriteOther | QFile::ExeOther);
    EXPECT_FALSE(find("/etc/sbus/plant.toml"));
}

TEST_F(ServiceDirectory, CountsWhenItsUserAloneMayWriteToIt) {
    QFile::setPermissions(folder.filePath(QStringLiteral("plant")), userAlone | QFile::WriteGroup);
    EXPECT_FALSE(find("/etc/sbus/plant.toml"));
}

TEST_F(ServiceDirectory, IsNoLink) {
    EXPECT_TRUE(
        QFile::link(folder.filePath(QStringLiteral("plant")), folder.filePath(QStringLiteral("link"))));
    EXPECT_FALSE(find("/etc/sbus/link.toml"));
}

TEST_F(ServiceDirectory, OfThisProgramIsThatOfTheEnvironmentBelowTheServices) {
    qunsetenv("RUNTIME_DIRECTORY");
    EXPECT_EQ(ownServiceDirectory(), "");
    qputenv("RUNTIME_DIRECTORY", "/run/sbus-host/plant");
    EXPECT_EQ(ownServiceDirectory(), "/run/sbus-host/plant");
    qputenv("RUNTIME_DIRECTORY", "/run/sbus-host/plant:/run/other");
    EXPECT_EQ(ownServiceDirectory(), "/run/sbus-host/plant");
    qputenv("RUNTIME_DIRECTORY", "/run/other");
    EXPECT_EQ(ownServiceDirectory(), "");
}

TEST_F(ServiceDirectory, HoldsTheSocketOfTheUserAndThatOfAGroupInFoldersOfTheirOwn) {
    qputenv("RUNTIME_DIRECTORY", "/run/sbus-host/plant");
    EXPECT_THAT(host::controlSocketPaths("/etc/sbus/plant.toml"),
                ElementsAre(StartsWith("/run/sbus-host/plant/own/plant-")));
    EXPECT_THAT(host::controlSocketPaths("/etc/sbus/plant.toml", host::GroupId{77}),
                ElementsAre(StartsWith("/run/sbus-host/plant/group-77/plant-")));
}
