#include "Crowd.h"
#include "services/control/SocketPath.h"

#include <Simulator.h>

#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

// A host and its clients as programs, with simulated controllers behind them.

using testing::AllOf;
using testing::HasSubstr;

namespace {

constexpr int patienceMs = 60'000;

struct Ending {
    int status = -1;
    std::string output;
    std::string errors;
};

bool eventually(const std::function<bool()>& condition) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.elapsed() > patienceMs)
            return false;
        QThread::msleep(20);
    }
    return true;
}

class ControlledProgram : public testing::Test {
protected:
    ControlledProgram() : simulator({{sim::udpLine(1, {5, 6})}}) {
        EXPECT_EQ(simulator.start(), "");
        writeSite("1s");
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
    }

    void TearDown() override {
        for (const auto& one : started) {
            one->kill();
            one->waitForFinished(patienceMs);
        }
    }

    // Integrity polls come once an hour, the others each `period`.
    void writeSite(const char* period) {
        QFile file(site);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("[[channel]]\nid = 1\nname = \"waterworks\"\ntype = \"SBus-Ethernet\"\nprimary = "
                   "\"udp://127.0.0.1:" +
                   QByteArray::number(simulator.port(1)) + "\"\n");
        for (const char* const rtu : {"pump-house\"\nid = 1\nstation = 5", "tank\"\nid = 2\nstation = 6"})
            file.write(
                "[[channel.rtu]]\nname = \"" + QByteArray(rtu) +
                "\ntimeout = \"300ms\"\nscan = { integrity = \"1h\", status = \"" + period +
                "\", analog = \"1h\" }\n"
                "[[channel.rtu.point]]\nid = 1\nname = \"P1_START\"\nkind = \"status\"\naddress = \"O32\"\n"
                "[[channel.rtu.point]]\nid = 2\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R10\"\n");
    }

    QProcess& start(const QStringList& arguments) {
        started.push_back(std::make_unique<QProcess>());
        QProcess& program = *started.back();
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(HOST_PROGRAM), arguments);
        EXPECT_TRUE(program.waitForStarted(patienceMs));
        return program;
    }

    Ending endOf(QProcess& program) {
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return {program.exitCode(), program.readAllStandardOutput().toStdString(),
                program.readAllStandardError().toStdString()};
    }

    Ending ctl(const QStringList& arguments) {
        return endOf(start(QStringList{QStringLiteral("ctl"), site} + arguments));
    }
    Ending ctl(const char* arguments) { return ctl(QString::fromLatin1(arguments).split(QLatin1Char(' '))); }

    // A host that answers its clients and has read every point.
    QProcess& startHost(const QStringList& arguments = {}) {
        QProcess& host = start(QStringList{QStringLiteral("run"), site} + arguments);
        EXPECT_TRUE(eventually([this] {
            const std::string status = ctl("status --format json").output;
            return status.find("\"never_read_points\":0") != std::string::npos &&
                   status.find("\"never_read_points\":2") == std::string::npos;
        }));
        return host;
    }

    std::string socketPath() const {
        qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
        std::string path = host::controlSocketPaths(site.toStdString()).front();
        qunsetenv("XDG_RUNTIME_DIR");
        return path;
    }

    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    sim::Simulator simulator;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::vector<std::unique_ptr<QProcess>> started;
};

} // namespace

TEST_F(ControlledProgram, WritesPointsThatTheControllersHoldAfterwards) {
    startHost();
    const Ending ending = ctl("write pump-house/P1_START=on waterworks/tank/LEVEL=-7");
    EXPECT_EQ(ending.status, 0) << ending.errors;
    EXPECT_EQ(ending.output, "pump-house/P1_START = 1  success\ntank/LEVEL = -7  success\n");
    EXPECT_EQ(simulator.memory(1, 5).get(sim::Media::Outputs, 32), 1U);
    EXPECT_EQ(simulator.memory(1, 6).get(sim::Media::Registers, 10), static_cast<std::uint32_t>(-7));
}

TEST_F(ControlledProgram, ShowsTheStatusAsATable) {
    startHost();
    const Ending ending = ctl("status");
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, AllOf(HasSubstr("waterworks  SBus-Ethernet  udp://127.0.0.1:"),
                                     HasSubstr("pump-house        5  connected"), HasSubstr("never read"),
                                     HasSubstr("\nconsole  lost 0\n")));
    EXPECT_THAT(ctl("status --format json").output, HasSubstr(R"("pulses":{"switched_off":0,"watched":0})"));
}

TEST_F(ControlledProgram, PollsOnDemandAndShowsWhatHasChanged) {
    startHost();
    QProcess& watch = start({QStringLiteral("ctl"), site, QStringLiteral("watch"), QStringLiteral("tank")});
    std::string shown;
    const auto shows = [&](const char* text) {
        watch.waitForReadyRead(20);
        shown += watch.readAllStandardOutput().toStdString();
        return shown.find(text) != std::string::npos;
    };
    EXPECT_TRUE(eventually([&] { return shows("tank/LEVEL (R10) = 0  good"); }));
    simulator.memory(1, 6).set(sim::Media::Registers, 10, 99);
    const Ending poll = ctl("poll tank");
    EXPECT_EQ(poll.status, 0);
    EXPECT_EQ(poll.output, "tank  asked for\n");
    EXPECT_TRUE(eventually([&] { return shows("tank/LEVEL (R10) = 99  good"); }));
    EXPECT_EQ(shown.find("pump-house"), std::string::npos);

    watch.terminate(); // as Ctrl-C does
    EXPECT_EQ(endOf(watch).status, 0);
}

TEST_F(ControlledProgram, ShowsTheVeryLinesOfTheSocketWhileItWatches) {
    startHost();
    QProcess& watch = start({QStringLiteral("ctl"), site, QStringLiteral("watch"), QStringLiteral("tank"),
                             QStringLiteral("--format"), QStringLiteral("json")});
    QByteArray shown;
    EXPECT_TRUE(eventually([&] {
        watch.waitForReadyRead(20);
        shown += watch.readAllStandardOutput();
        return shown.count('\n') >= 3;
    }));
    const QList<QByteArray> lines = shown.split('\n');
    EXPECT_EQ(lines[0].toStdString(), R"({"ok":true,"points":2})");
    EXPECT_THAT(lines[1].toStdString(), HasSubstr(R"("rtu":"tank","id":1,"name":"P1_START")"));
    EXPECT_THAT(lines[2].toStdString(), HasSubstr(R"("rtu":"tank","id":2,"name":"LEVEL")"));
    watch.terminate();
    EXPECT_EQ(endOf(watch).status, 0);
}

TEST_F(ControlledProgram, TellsThatAClockWasNotSetOverEthernet) {
    startHost();
    const Ending ending = ctl("time-sync tank");
    EXPECT_EQ(ending.status, 4);
    EXPECT_THAT(ending.output, HasSubstr("tank  left out: not possible on Ethernet"));
    EXPECT_THAT(ending.output, testing::Not(HasSubstr("success")));
}

TEST_F(ControlledProgram, EndsWithThreeWhenSomeOfItWasWritten) {
    startHost();
    simulator.silence(1, 6, true);
    const Ending ending = ctl("write pump-house/LEVEL=1 tank/LEVEL=1");
    EXPECT_EQ(ending.status, 3);
    EXPECT_THAT(ending.output, HasSubstr("pump-house/LEVEL = 1  success\n"));
    EXPECT_EQ(ctl("write tank/LEVEL=1").status, 1);
}

TEST_F(ControlledProgram, EndsWithTwoOnWrongNamesAndUsage) {
    startHost();
    const Ending ending = ctl("write pump-house/P1_STRT=1");
    EXPECT_EQ(ending.status, 2);
    EXPECT_THAT(ending.errors, HasSubstr("near it: \"pump-house/P1_START\""));
    EXPECT_EQ(ctl("write pump-house/P1_START").status, 2);
    EXPECT_EQ(ctl("fly").status, 2);
    EXPECT_EQ(ctl(QStringList()).status, 2);
    EXPECT_EQ(endOf(start({QStringLiteral("ctl"), QStringLiteral("/no/such.toml"), QStringLiteral("status")}))
                  .status,
              2);
}

TEST_F(ControlledProgram, SaysWhatToStartWhenNoHostRuns) {
    const Ending ending = ctl("status");
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("start one with: sbus-host run " + site.toStdString()));
}

TEST_F(ControlledProgram, SaysThatItWasInterruptedBeforeTheHostHasReplied) {
    const QString path = folder.filePath(QStringLiteral("busy.sock"));
    QLocalServer busyHost;
    ASSERT_TRUE(busyHost.listen(path));
    QProcess& client = start({QStringLiteral("ctl"), site, QStringLiteral("write"),
                              QStringLiteral("tank/LEVEL=1"), QStringLiteral("--control"), path});
    ASSERT_TRUE(busyHost.waitForNewConnection(patienceMs));
    QLocalSocket& connection = *busyHost.nextPendingConnection();
    ASSERT_TRUE(connection.canReadLine() || connection.waitForReadyRead(patienceMs));
    client.terminate(); // as Ctrl-C does
    const Ending ending = endOf(client);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("interrupted before the host has replied"));
}

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
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("near.sock"))));
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("near.sock.lock"))));
}

TEST_F(ControlledProgram, IsReachedAtTheSocketThatTheSiteFileNames) {
    const QString path = folder.filePath(QStringLiteral("named.sock"));
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("[control]\nsocket = \"" + path.toUtf8() + "\"\n");
    file.close();
    EXPECT_THAT(ctl("status").errors, HasSubstr("named.sock, which the site file names"));
    startHost();
    EXPECT_TRUE(QFile::exists(path));
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

TEST_F(ControlledProgram, GivesUpAHostThatDoesNotReply) {
    const QString path = folder.filePath(QStringLiteral("stopped.sock"));
    QLocalServer stoppedHost; // the system accepts for it
    ASSERT_TRUE(stoppedHost.listen(path));
    std::vector<QProcess*> clients;
    for (const char* const request : {"status", "poll", "trace"})
        clients.push_back(&start(
            {QStringLiteral("ctl"), site, QString::fromLatin1(request), QStringLiteral("--control"), path}));
    QProcess& writer = start({QStringLiteral("ctl"), site, QStringLiteral("write"),
                              QStringLiteral("tank/LEVEL=1"), QStringLiteral("--control"), path});
    for (QProcess* const client : clients) {
        const Ending ending = endOf(*client);
        EXPECT_EQ(ending.status, 1);
        EXPECT_THAT(ending.errors, HasSubstr("it is stopped or overloaded"));
    }
    EXPECT_FALSE(writer.waitForFinished(0)); // how long a controller takes, nobody knows
}

TEST_F(ControlledProgram, GivesUpALineWithoutEnd) {
    const QString path = folder.filePath(QStringLiteral("endless.sock"));
    QLocalServer endlessHost;
    ASSERT_TRUE(endlessHost.listen(path));
    QProcess& client =
        start({QStringLiteral("ctl"), site, QStringLiteral("watch"), QStringLiteral("--control"), path});
    ASSERT_TRUE(endlessHost.waitForNewConnection(patienceMs));
    QLocalSocket& connection = *endlessHost.nextPendingConnection();
    const QByteArray piece(1024 * 1024, 'x');
    QElapsedTimer elapsed;
    elapsed.start();
    while (connection.state() == QLocalSocket::ConnectedState && elapsed.elapsed() < patienceMs) {
        if (connection.bytesToWrite() < piece.size())
            connection.write(piece);
        connection.waitForBytesWritten(100);
    }
    const Ending ending = endOf(client);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("which no sbus-host sends"));
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
    ASSERT_TRUE(QFile::exists(QString::fromStdString(socketPath())));
    startHost();
    EXPECT_EQ(ctl("write pump-house/LEVEL=5").status, 0);
}

TEST_F(ControlledProgram, EndsInOrderWhileClientsWatchAndWait) {
    QProcess& host = startHost();
    QProcess& watch = start({QStringLiteral("ctl"), site, QStringLiteral("watch")});
    ASSERT_TRUE(watch.waitForReadyRead(patienceMs));
    simulator.silence(1, 6, true);
    QProcess& writer =
        start({QStringLiteral("ctl"), site, QStringLiteral("write"), QStringLiteral("tank/LEVEL=1")});
    host.terminate();
    endOf(host);
    EXPECT_EQ(endOf(watch).status, 1);
    EXPECT_EQ(endOf(writer).status, 1); // told the end, or already that the controller is silent
    EXPECT_FALSE(QFile::exists(QString::fromStdString(socketPath())));
}

TEST_F(ControlledProgram, SurvivesMoreClientsThanItMayHaveFilesOpen) {
    started.push_back(std::make_unique<QProcess>());
    QProcess& host = *started.back();
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral("sh"),
               {QStringLiteral("-c"), QStringLiteral("ulimit -n 64 && exec \"$0\" run \"$1\""),
                QStringLiteral(HOST_PROGRAM), site});
    ASSERT_TRUE(host.waitForStarted(patienceMs));
    ASSERT_TRUE(eventually([this] { return ctl("status").status == 0; }));
    {
        std::vector<std::unique_ptr<QLocalSocket>> clients;
        for (int i = 0; i < 300; ++i) {
            clients.push_back(std::make_unique<QLocalSocket>());
            clients.back()->connectToServer(QString::fromStdString(socketPath()));
            clients.back()->waitForConnected(100); // most are turned away, one way or the other
        }
    }
    EXPECT_FALSE(host.waitForFinished(0));
    EXPECT_TRUE(eventually([this] { return ctl("write pump-house/LEVEL=8").status == 0; }));
    EXPECT_EQ(simulator.memory(1, 5).get(sim::Media::Registers, 10), 8U);
}

// Telegrams are counted by the controllers, before the crowd comes and while it asks without pause.
TEST_F(ControlledProgram, PollsAtItsPeriodWhileAThousandClientsAreConnected) {
    writeSite("100ms");
    startHost();
    const auto telegramsWithin = [this](int ms, const std::function<void()>& meanwhile) {
        const auto before = simulator.counts(1).telegrams;
        QElapsedTimer elapsed;
        elapsed.start();
        while (elapsed.elapsed() < ms)
            meanwhile();
        return static_cast<double>(simulator.counts(1).telegrams - before) /
               static_cast<double>(elapsed.elapsed());
    };
    const double alone = telegramsWithin(2'000, [] { QThread::msleep(50); });

    Crowd crowd(socketPath(), 1'000);
    ASSERT_TRUE(crowd.connectAll());
    const double inCrowd = telegramsWithin(4'000, [&crowd] {
        crowd.sendAll(R"({"do":"status"})");
        EXPECT_TRUE(crowd.waitForReplies());
    });
    EXPECT_EQ(crowd.goodReplies(), crowd.goodRequests());
    EXPECT_EQ(crowd.errorReplies(), crowd.rubbishLines());
    EXPECT_TRUE(crowd.isWhole());
    RecordProperty("telegramsPerSecondAlone", std::to_string(1'000 * alone));
    RecordProperty("telegramsPerSecondInCrowd", std::to_string(1'000 * inCrowd));
    // Nothing is lost but what the clients of this test take of the machine themselves.
    EXPECT_GT(inCrowd, alone / 2);
    EXPECT_EQ(ctl("write pump-house/LEVEL=3").status, 0);
}

// Whoever has the socket says what it likes.
TEST_F(ControlledProgram, ShowsWhatAStrangerSaysWithoutObeyingIt) {
    const std::pair<QByteArray, std::string> sayings[] = {
        {"hello \x1B[2J\n", "what answers is no sbus-host of this kind; it says: hello \\x1B[2J\n"},
        {R"({"ok":false,"code":"unknown","error":"no \u001b[2J\u009b"})"
         "\n",
         "sbus-host: no \\x1B[2J\\x9B\n"}};
    for (const auto& [said, shown] : sayings) {
        const QString path = folder.filePath(QStringLiteral("stranger"));
        QLocalServer stranger;
        ASSERT_TRUE(stranger.listen(path));
        QProcess& client =
            start({QStringLiteral("ctl"), site, QStringLiteral("watch"), QStringLiteral("--control"), path});
        ASSERT_TRUE(stranger.waitForNewConnection(patienceMs));
        QLocalSocket& connection = *stranger.nextPendingConnection();
        connection.write(said);
        ASSERT_TRUE(connection.waitForBytesWritten(patienceMs));
        const Ending ending = endOf(client);
        EXPECT_NE(ending.status, 0);
        EXPECT_THAT(ending.errors, HasSubstr(shown));
        EXPECT_EQ(ending.output, "");
    }
}
