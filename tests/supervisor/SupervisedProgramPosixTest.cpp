#include "SupervisorPosix.h"

#include "ReferenceTelegram.h"
#include "UdpController.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr int patienceMs = 60'000;

// The value 7 of the one register that is asked for.
QByteArray answerTo(const QByteArray& request) {
    const auto sequence =
        static_cast<quint16>(static_cast<quint8>(request.at(6)) << 8 | static_cast<quint8>(request.at(7)));
    return ethernetTelegram(sequence, 0x01, hex("00 00 00 07"));
}

// "sbus-host run" under a supervisor that the test plays.
class SupervisedProgram : public testing::Test {
protected:
    SupervisedProgram() {
        for (const char* const variable : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME"})
            environment.insert(QString::fromLatin1(variable), folder.path());
        environment.insert(QStringLiteral("HANG_FILE"), hangFile);
    }
    void TearDown() override {
        program.kill();
        program.waitForFinished(patienceMs);
    }

    // A line over UDP, and a serial line that cannot be opened.
    void writeSite(unsigned port, const QByteArray& timeout) const {
        QFile file(site);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[[channel]]\nid = 1\nname = \"pumps\"\ntype = \"SBus-Ethernet\"\n"
                   "primary = \"udp://127.0.0.1:" +
                   QByteArray::number(port) +
                   "\"\n[[channel.rtu]]\nid = 1\nname = \"pump\"\nstation = 5\nattempts = 1\n" +
                   "timeout = \"" + timeout + "\"\n" + point +
                   "[[channel]]\nid = 2\nname = \"wells\"\ntype = \"SBus-Serial\"\n"
                   "primary = \"serial:/nowhere/ttyS0\"\n"
                   "[[channel.rtu]]\nid = 1\nstation = 6\n" +
                   point);
    }

    void runUnder(const SupervisorPosix& supervisor, int watchdogMs, const QStringList& more = {}) {
        environment.insert(QStringLiteral("NOTIFY_SOCKET"), QString::fromStdString(supervisor.name()));
        environment.insert(QStringLiteral("WATCHDOG_USEC"), QString::number(watchdogMs * 1000));
        run(more);
    }

    void run(const QStringList& more) {
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(HOST_PROGRAM), QStringList{QStringLiteral("run"), site} + more);
        ASSERT_TRUE(program.waitForStarted(patienceMs));
    }

    int end() {
        program.terminate();
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return program.exitCode();
    }

    const QByteArray point =
        "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R1\"\n";
    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    const QString hangFile = folder.filePath(QStringLiteral("hang"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess program;
};

class SupervisedProgramAt : public SupervisedProgram, public testing::WithParamInterface<bool> {};

} // namespace

TEST_P(SupervisedProgramAt, IsReadyWhenTheFirstPollOfEachLineHasEnded) {
    SupervisorPosix supervisor(folder.path().toStdString(), GetParam());
    UdpController controller;
    writeSite(controller.port(), "20s");
    runUnder(supervisor, patienceMs);
    const QByteArray request = controller.receive(); // the poll is on its way
    ASSERT_FALSE(request.isEmpty());

    // Meanwhile the supervisor hears that the host lives and wants more time, but nothing else.
    for (int signs = 0; signs < 3; ++signs)
        ASSERT_TRUE(supervisor.hears("WATCHDOG=1"));
    EXPECT_TRUE(supervisor.hears("EXTEND_TIMEOUT_USEC=30000000"));
    EXPECT_FALSE(supervisor.hasHeard("READY=1"));

    controller.answer(answerTo(request));
    EXPECT_TRUE(supervisor.hears("READY=1"));
    EXPECT_TRUE(supervisor.hears("WATCHDOG=1"));
}

INSTANTIATE_TEST_SUITE_P(Name, SupervisedProgramAt, testing::Bool(),
                         [](const auto& name) { return name.param ? "WithoutAFile" : "OfAFile"; });

TEST_F(SupervisedProgram, TellsHowTheSiteStands) {
    SupervisorPosix supervisor(folder.path().toStdString());
    UdpController controller;
    writeSite(controller.port(), "20s");
    runUnder(supervisor, patienceMs);
    EXPECT_TRUE(supervisor.hears("STATUS=1 of 2 lines connected, 0 of 2 points good"));
}

TEST_F(SupervisedProgram, GivesNoSignOfLifeWhileTheThreadOfALineIsStuck) {
    SupervisorPosix supervisor(folder.path().toStdString());
    QFile(site).remove();
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[[channel]]\nid = 1\nname = \"wells\"\ntype = \"SBus-Serial\"\n"
               "primary = \"serial:/nowhere/ttyS0\"\n"
               "[[channel.rtu]]\nid = 1\nstation = 6\ntimeout = \"100ms\"\n" +
               point);
    file.close();
    runUnder(supervisor, 2'000, {QStringLiteral("--plugin"), QStringLiteral(HANGING_PLUGIN_FILE)});
    ASSERT_TRUE(supervisor.hears("READY=1"));
    ASSERT_TRUE(supervisor.hears("WATCHDOG=1"));

    QFile hang(hangFile);
    ASSERT_TRUE(hang.open(QIODevice::WriteOnly));
    ASSERT_TRUE(
        supervisor.hears("STATUS=0 of 1 lines connected, 0 of 1 points good; stuck: channel 1 \"wells\""));
    // A host that lives gives a sign every 250 ms.
    supervisor.forget();
    supervisor.listenFor(std::chrono::seconds(2));
    EXPECT_FALSE(supervisor.hasHeard("WATCHDOG=1"));

    ASSERT_TRUE(hang.remove());
    EXPECT_TRUE(supervisor.hears("WATCHDOG=1"));
    end();
    const std::string errors = program.readAllStandardError().toStdString();
    EXPECT_THAT(errors, HasSubstr("channel 1 \"wells\": its thread is stuck"));
    EXPECT_THAT(errors, HasSubstr("channel 1 \"wells\": its thread moves again"));
}

TEST_F(SupervisedProgram, TellsThatItStopsAndHowLongThatMayTake) {
    SupervisorPosix supervisor(folder.path().toStdString());
    UdpController controller;
    writeSite(controller.port(), "2s");
    runUnder(supervisor, patienceMs);
    ASSERT_TRUE(supervisor.hears("READY=1")); // with the time-out
    end();
    EXPECT_TRUE(supervisor.hears("STOPPING=1"));
    // The longest time-out, the break before a telegram, and what ends with the lines.
    EXPECT_TRUE(supervisor.hears("EXTEND_TIMEOUT_USEC=12010000"));
}

TEST_F(SupervisedProgram, GivesNoSignsThatAreAskedOfAnotherProcess) {
    SupervisorPosix supervisor(folder.path().toStdString());
    UdpController controller;
    writeSite(controller.port(), "2s");
    environment.insert(QStringLiteral("WATCHDOG_PID"), QStringLiteral("1"));
    runUnder(supervisor, patienceMs);
    ASSERT_TRUE(supervisor.hears("READY=1")); // with the time-out
    EXPECT_FALSE(supervisor.hasHeard("WATCHDOG=1"));
}

namespace {

std::string contentsOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().toStdString();
}

QString journalStream(const QString& path) {
    struct stat found {};
    EXPECT_EQ(stat(path.toLocal8Bit().constData(), &found), 0);
    return QString::number(found.st_dev) + QLatin1Char(':') + QString::number(found.st_ino);
}

// Standard error is a file that takes the journal's place.
class JournalledProgram : public SupervisedProgram {
protected:
    JournalledProgram() {
        QFile file(errors);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        program.setStandardErrorFile(errors, QIODevice::Append);
        environment.insert(QStringLiteral("JOURNAL_STREAM"), journalStream(errors));
        writeSite(unusedUdpPort(), "100ms");
    }

    std::string errorsOf(const QStringList& arguments) {
        run(arguments);
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        return contentsOf(errors);
    }

    const QString errors = folder.filePath(QStringLiteral("errors"));
    const QStringList shortRun = {QStringLiteral("--for"), QStringLiteral("500ms")};
};

} // namespace

TEST_F(JournalledProgram, TellsFailuresOfLinesAsWarningsWithoutATimeOfItsOwn) {
    EXPECT_THAT(errorsOf(shortRun), HasSubstr("<4>channel 2 \"wells\": "));
}

TEST_F(JournalledProgram, TellsWhyItEndsAsAnError) {
    EXPECT_THAT(errorsOf({QStringLiteral("--plugin"), QStringLiteral("/nowhere/driver.so")}),
                StartsWith("<3>sbus-host: plug-in /nowhere/driver.so is not there"));
}

TEST_F(JournalledProgram, HasNoPrioritiesWhereTheJournalIsAnothersStandardError) {
    environment.insert(QStringLiteral("JOURNAL_STREAM"), journalStream(folder.path()));
    const std::string told = errorsOf(shortRun);
    EXPECT_THAT(told, ContainsRegex("^[0-9]{4}-[0-9]{2}-[0-9]{2} .*  channel 2 \"wells\": "));
    EXPECT_THAT(told, Not(HasSubstr("<")));
}
