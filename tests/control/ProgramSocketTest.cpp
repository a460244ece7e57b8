#include "ControlledProgram.h"

#include <gmock/gmock.h>

// Where a host listens, and where its clients look for it.

using testing::AllOf;
using testing::HasSubstr;

TEST_F(ControlledProgram, TakesNoCommandsWhenToldSo) {
    QProcess& host = start({QStringLiteral("run"), site, QStringLiteral("--no-control")});
    ASSERT_TRUE(host.waitForReadyRead(patienceMs));
    EXPECT_EQ(ctl("status").status, 1);
}

TEST_F(ControlledProgram, IsReachedAtTheSocketThatItWasGiven) {
    const QString path = folder.filePath(QStringLiteral("my.sock"));
    QProcess& host = start({QStringLiteral("run"), site, QStringLiteral("--control"), path});
    ASSERT_TRUE(host.waitForReadyRead(patienceMs));
    EXPECT_TRUE(eventually([&] {
        return ctl({QStringLiteral("status"), QStringLiteral("--control"), path}).status == 0;
    }));
    EXPECT_EQ(ctl("status").status, 1);
    const Ending second = endOf(start({QStringLiteral("run"), site, QStringLiteral("--control"), path}));
    EXPECT_EQ(second.status, 2);
    EXPECT_THAT(second.errors, HasSubstr("belongs to another sbus-host"));
}

TEST_F(ControlledProgram, MeetsItsClientAtAPathSeenFromTheCurrentFolder) {
    const QStringList control{QStringLiteral("--control"), QStringLiteral("near.sock")};
    const auto inFolder = [this](QStringList arguments) -> QProcess& {
        started.push_back(std::make_unique<QProcess>());
        started.back()->setWorkingDirectory(folder.path());
        started.back()->start(QStringLiteral(HOST_PROGRAM), arguments);
        EXPECT_TRUE(started.back()->waitForStarted(patienceMs));
        return *started.back();
    };
    inFolder(QStringList{QStringLiteral("run"), site} + control);
    EXPECT_TRUE(eventually([&] {
        return endOf(inFolder(QStringList{QStringLiteral("ctl"), site, QStringLiteral("status")} + control))
                   .status == 0;
    }));
    EXPECT_EQ(QFile::exists(folder.filePath(QStringLiteral("near.sock"))), socketsAreFiles);
    EXPECT_EQ(QFile::exists(folder.filePath(QStringLiteral("near.sock.lock"))), socketsAreFiles);
}

TEST_F(ControlledProgram, IsReachedAtTheSocketThatTheSiteFileNames) {
    const QString path = folder.filePath(QStringLiteral("named.sock"));
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("[control]\nsocket = \"" + path.toUtf8() + "\"\n");
    file.close();
    EXPECT_THAT(ctl("status").errors, HasSubstr("named.sock, which the site file names"));
    startHost();
    EXPECT_EQ(QFile::exists(path), socketsAreFiles);
    EXPECT_EQ(ctl("write pump-house/LEVEL=5").status, 0);
}

TEST_F(ControlledProgram, StartsNotWithAGroupThatThereIsNot) {
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("[control]\ngroup = \"no-such-group\"\n");
    file.close();
    for (const char* const command : {"run", "check"}) {
        const Ending ending = endOf(start({QString::fromLatin1(command), site}));
        EXPECT_EQ(ending.status, 2);
        EXPECT_THAT(ending.errors, HasSubstr("there is no group \"no-such-group\" on this system"));
    }
}

TEST_F(ControlledProgram, TellsThatAPathIsTooLongForASocket) {
    const QString path = folder.filePath(QString(200, QLatin1Char('x')));
    const Ending host = endOf(start({QStringLiteral("run"), site, QStringLiteral("--control"), path}));
    EXPECT_EQ(host.status, 2);
    EXPECT_THAT(host.errors, HasSubstr("a socket's may have 107"));
    const Ending client = ctl({QStringLiteral("status"), QStringLiteral("--control"), path});
    EXPECT_EQ(client.status, 1);
    EXPECT_THAT(client.errors, HasSubstr("a socket's may have 107"));
}

TEST_F(ControlledProgram, RunsASiteTwiceAndTellsThatOnlyTheFirstTakesCommands) {
    startHost();
    const Ending second =
        endOf(start({QStringLiteral("run"), site, QStringLiteral("--for"), QStringLiteral("1s")}));
    EXPECT_THAT(second.errors, AllOf(HasSubstr("belongs to another sbus-host"), HasSubstr("--control PATH")));
    EXPECT_EQ(ctl("status").status, 0);
}

TEST_F(ControlledProgram, ReplacesTheSocketOfAKilledHost) {
    QProcess& killed = startHost();
    killed.kill();
    ASSERT_TRUE(killed.waitForFinished(patienceMs));
    ASSERT_EQ(QFile::exists(QString::fromStdString(socketPath())), socketsAreFiles);
    startHost();
    EXPECT_EQ(ctl("write pump-house/LEVEL=5").status, 0);
}
