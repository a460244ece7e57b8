#include "ControlledProgram.h"
#include "Crowd.h"
#include "StopProgram.h"

#include <QLocalServer>
#include <QLocalSocket>

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;

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

    stopProgram(watch); // as Ctrl-C does
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
    stopProgram(watch);
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
    stopProgram(client); // as Ctrl-C does
    const Ending ending = endOf(client);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("interrupted before the host has replied"));
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

TEST_F(ControlledProgram, EndsInOrderWhileClientsWatchAndWait) {
    QProcess& host = startHost();
    QProcess& watch = start({QStringLiteral("ctl"), site, QStringLiteral("watch")});
    ASSERT_TRUE(watch.waitForReadyRead(patienceMs));
    simulator.silence(1, 6, true);
    QProcess& writer =
        start({QStringLiteral("ctl"), site, QStringLiteral("write"), QStringLiteral("tank/LEVEL=1")});
    stopProgram(host);
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
