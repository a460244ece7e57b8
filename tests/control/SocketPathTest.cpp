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

class SocketPath : public testing::Test {
protected:
    SocketPath() {
        qputenv("XDG_RUNTIME_DIR", runtime.toLocal8Bit());
        EXPECT_TRUE(QDir().mkpath(runtime));
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

TEST_F(SocketPath, StaysShortWhateverTheSiteFileIsCalled) {
    const std::string site = touch(QString(200, QLatin1Char('n')) + QString::fromUtf8("ü.toml"));
    const std::string path = controlSocketPaths(site).back();
    EXPECT_LT(path.size(), 90U) << path; // of some hundred that a socket may have
}
