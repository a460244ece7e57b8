#include "services/control/PrivateDirectory.h"
#include "services/control/SocketPath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::controlSocketPaths;
using host::prepareControlSocketPlace;
using testing::StartsWith;

namespace {

constexpr auto userAlone = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadUser |
                           QFile::WriteUser | QFile::ExeUser;

// As long as it lives.
class TemporaryFilesIn {
public:
    explicit TemporaryFilesIn(const QString& path) { qputenv("TMPDIR", path.toLocal8Bit()); }
    TemporaryFilesIn(const TemporaryFilesIn&) = delete;
    TemporaryFilesIn& operator=(const TemporaryFilesIn&) = delete;
    ~TemporaryFilesIn() { before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before); }

private:
    const QByteArray before = qgetenv("TMPDIR");
};

class SocketPath : public testing::Test {
protected:
    SocketPath() {
        qputenv("XDG_RUNTIME_DIR", runtime.toLocal8Bit());
        EXPECT_TRUE(QDir().mkpath(runtime));
        QFile::setPermissions(runtime, userAlone);
    }
    void TearDown() override {
        before.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", before.toLocal8Bit());
    }

    std::string touch(const QString& name) {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path.toStdString();
    }

    const QString before = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QTemporaryDir folder;
    const QString runtime = folder.filePath(QStringLiteral("runtime"));
};

} // namespace

TEST_F(SocketPath, IsTheSameForEveryWayToTheSiteFile) {
    const std::string site = touch(QStringLiteral("a/site.toml"));
    const QString link = folder.filePath(QStringLiteral("link.toml"));
    ASSERT_TRUE(QFile::link(QString::fromStdString(site), link));
    EXPECT_EQ(controlSocketPaths(site), controlSocketPaths(link.toStdString()));
    EXPECT_EQ(controlSocketPaths(site),
              controlSocketPaths(folder.filePath(QStringLiteral("a/../a/site.toml")).toStdString()));
}

TEST_F(SocketPath, DiffersBetweenSites) {
    EXPECT_NE(controlSocketPaths(touch(QStringLiteral("a/site.toml"))),
              controlSocketPaths(touch(QStringLiteral("b/site.toml"))));
}

TEST_F(SocketPath, LiesInADirectoryForTheUserAlone) {
    const auto place = prepareControlSocketPlace(touch(QStringLiteral("site.toml")));
    EXPECT_EQ(place.fault, "");
    EXPECT_THAT(place.path, StartsWith((runtime + QStringLiteral("/sbus-host/site-")).toStdString()));
    EXPECT_EQ(QFile::permissions(runtime + QStringLiteral("/sbus-host")), userAlone);
}

TEST_F(SocketPath, ClosesADirectoryThatIsOpenToOthers) {
    const QString directory = runtime + QStringLiteral("/sbus-host");
    ASSERT_TRUE(QDir().mkpath(directory));
    QFile::setPermissions(directory, userAlone | QFile::ReadOther | QFile::ExeOther);
    EXPECT_EQ(prepareControlSocketPlace(touch(QStringLiteral("site.toml"))).fault, "");
    EXPECT_EQ(QFile::permissions(directory), userAlone);
}

TEST_F(SocketPath, GoesNotThroughASymbolicLink) {
    ASSERT_TRUE(QFile::link(folder.path(), runtime + QStringLiteral("/sbus-host")));
    const auto place = prepareControlSocketPlace(touch(QStringLiteral("site.toml")));
    EXPECT_THAT(place.path, StartsWith((QDir::tempPath() + QStringLiteral("/sbus-host-")).toStdString()));
}

TEST_F(SocketPath, LiesBesideTheTemporaryFilesWithoutARuntimeDirectory) {
    const std::string site = touch(QStringLiteral("site.toml"));
    const auto both = controlSocketPaths(site);
    qunsetenv("XDG_RUNTIME_DIR");
    const auto one = controlSocketPaths(site);
    ASSERT_EQ(both.size(), 2U);
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(both[1], one[0]); // a client of either environment finds it
    EXPECT_THAT(one[0], StartsWith((QDir::tempPath() + QStringLiteral("/sbus-host-")).toStdString()));
}

TEST_F(SocketPath, PassesOverARuntimeDirectoryThatIsOpenToOthers) {
    QFile::setPermissions(runtime, userAlone | QFile::ReadGroup | QFile::ExeGroup);
    EXPECT_EQ(controlSocketPaths(touch(QStringLiteral("site.toml"))).size(), 1U);
}

TEST_F(SocketPath, PassesOverARelativeRuntimeDirectory) {
    const std::string site = touch(QStringLiteral("site.toml"));
    const QString here = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    qputenv("XDG_RUNTIME_DIR", "runtime");
    const auto paths = controlSocketPaths(site);
    QDir::setCurrent(here);
    EXPECT_EQ(paths.size(), 1U);
}

TEST_F(SocketPath, IsLookedForByAClientWhereThereIsADirectoryAlone) {
    const std::string site = touch(QStringLiteral("site.toml"));
    const auto early = host::findControlSockets(site);
    EXPECT_THAT(early.paths, testing::Not(testing::Contains(StartsWith(runtime.toStdString()))));
    prepareControlSocketPlace(site);
    EXPECT_EQ(host::findControlSockets(site).paths.front(), controlSocketPaths(site).front());
}

TEST_F(SocketPath, IsPassedOverWithAWordWhereOthersMayWrite) {
    const QString directory = runtime + QStringLiteral("/sbus-host");
    ASSERT_TRUE(QDir().mkpath(directory));
    QFile::setPermissions(directory, userAlone | QFile::WriteOther | QFile::ExeOther);
    const auto found = host::findControlSockets(touch(QStringLiteral("site.toml")));
    EXPECT_THAT(found.paths, testing::Not(testing::Contains(StartsWith(runtime.toStdString()))));
    EXPECT_THAT(found.passedOver, testing::Contains(testing::HasSubstr("can be written to by others")));
}

TEST_F(SocketPath, IsSeenFromTheCurrentFolderWhenItIsGivenWithoutOne) {
    EXPECT_EQ(host::fullSocketPath("a/b.sock"),
              QDir::current().absoluteFilePath(QStringLiteral("a/b.sock")).toStdString());
    EXPECT_EQ(host::fullSocketPath("/a/b.sock"), "/a/b.sock");
}

TEST_F(SocketPath, LiesInADirectoryOfItsOwnForAGroup) {
    const TemporaryFilesIn temporary(folder.path());
    const host::GroupId group = QFileInfo(folder.path()).groupId();
    const std::string site = touch(QStringLiteral("site.toml"));
    const auto place = prepareControlSocketPlace(site, group);
    EXPECT_EQ(place.fault, "");
    EXPECT_EQ(host::findControlSockets(site, group).paths, std::vector{place.path});
    const QString directory = QFileInfo(QString::fromStdString(place.path)).path();
    prepareControlSocketPlace(site); // of another host, closes another directory
    EXPECT_EQ(QFile::permissions(directory), userAlone | QFile::ReadGroup | QFile::ExeGroup);
}

TEST_F(SocketPath, IsLookedForByAClientThatHearsOfOtherUsersHosts) {
    const TemporaryFilesIn temporary(folder.path());
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("sbus-host-4711")));
    const QString own = QStringLiteral("sbus-host-") + QString::fromStdString(host::userTag());
    ASSERT_TRUE(QDir(folder.path()).mkdir(own));
    EXPECT_THAT(host::findControlSockets("site.toml").otherUsers, testing::ElementsAre("4711"));
}

TEST_F(SocketPath, StaysShortWhateverTheSiteFileIsCalled) {
    const std::string site = touch(QString(200, QLatin1Char('n')) + QString::fromUtf8("ü.toml"));
    const std::string path = controlSocketPaths(site).back();
    EXPECT_LT(path.size(), 90U) << path; // of some hundred that a socket may have
}
