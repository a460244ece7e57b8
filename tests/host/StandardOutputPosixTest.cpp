#include "HostProgram.h"

#include <QFile>
#include <QFileInfo>

#include <csignal>

// Standard output that cannot be written, that nobody reads, and that was never open.

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class StandardOutput : public HostProgram {
protected:
    StandardOutput() { writeSite("1,VALVE,status,O40,,,,,\n2,LEVEL,analog,R10,,,,,\n"); }

    // The command line of a shell, in which HOST, SIM, SITE and LINK stand for the programs, the site file
    // and the controller.
    QProcess& shell(QString commandLine) {
        commandLine.replace(QStringLiteral("HOST"), QStringLiteral(HOST_PROGRAM))
            .replace(QStringLiteral("SIM"), QStringLiteral(SIMULATOR_PROGRAM))
            .replace(QStringLiteral("SITE"), site)
            .replace(QStringLiteral("LINK"),
                     QStringLiteral("udp://127.0.0.1:%1").arg(simulator.port(lineId)));
        started.push_back(std::make_unique<QProcess>());
        QProcess& program = *started.back();
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral("bash"), {QStringLiteral("-c"), commandLine});
        EXPECT_TRUE(program.waitForStarted(patienceMs));
        return program;
    }
    Ending inShell(const char* commandLine) { return endOf(shell(QString::fromLatin1(commandLine))); }

    // A line that no other simulator has.
    void writeSerialSite() {
        QFile file(site);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("[[channel]]\nid = 1\ntype = \"SBus-Serial\"\nprimary = \"serial:" +
                   folder.filePath(QStringLiteral("line")).toUtf8() +
                   "\"\n[[channel.rtu]]\nid = 1\nname = \"tank\"\nstation = 5\npoints = \"points.csv\"\n");
    }

    // On standard error.
    static bool tells(QProcess& program, const char* text) {
        program.setReadChannel(QProcess::StandardError);
        QByteArray told;
        return eventually([&] {
            program.waitForReadyRead(1);
            told += program.readAllStandardError();
            return told.contains(text);
        });
    }
    // Whether the host goes on polling.
    bool pollsOn() {
        const auto telegrams = simulator.counts(lineId).telegrams;
        return eventually([&] { return simulator.counts(lineId).telegrams > telegrams + 3; });
    }
};

} // namespace

TEST_F(StandardOutput, OnAFullDiskEndsNoRunAndIsCounted) {
    QProcess& host = shell(QStringLiteral("exec HOST run SITE --format lines > /dev/full"));
    ASSERT_TRUE(tells(host,
                      "standard output cannot be written: No space left on device; its lines are lost, and "
                      "polling goes on"));
    EXPECT_TRUE(pollsOn());
    host.terminate();
    const Ending ending = endOf(host);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors,
                HasSubstr("lines could not be written to standard output: No space left on device"));
}

TEST_F(StandardOutput, OnAFullDiskIsToldByEverySubCommand) {
    startHost();
    for (const char* const command :
         {"HOST read LINK --station 5 R10", "HOST read LINK --station 5 R10 --format csv",
          "HOST write LINK --station 5 R10=4", "HOST write LINK --station 5 R10=4 --dry-run",
          "HOST check SITE", "HOST ctl SITE status", "HOST ctl SITE write pump-house/LEVEL=3",
          "HOST ctl SITE watch", "HOST --help", "HOST run --help"}) {
        const Ending ending = inShell((std::string(command) + " > /dev/full").c_str());
        EXPECT_EQ(ending.status, 1) << command;
        EXPECT_THAT(ending.errors, HasSubstr("standard output could not be written: ")) << command;
    }
    EXPECT_EQ(memory().get(sim::Media::Registers, 10), 3U); // done, though not told
}

TEST_F(StandardOutput, ThatIsFullDoesNotHideAWorseEnd) {
    simulator.silence(lineId, station, true);
    EXPECT_EQ(inShell("HOST read LINK --station 5 --timeout 100ms R10 --format json > /dev/full").status, 1);
    EXPECT_EQ(inShell("HOST check /no/such.toml > /dev/full").status, 2);
}

TEST_F(StandardOutput, WhoseReaderHasLeftEndsARunInWhichNothingChanges) {
    writeSite("1,VALVE,status,O40,,,,,\n"); // one line is all that is ever written
    const Ending ending = inShell("exec HOST run SITE --format lines > >(head -1)");
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.errors, Not(HasSubstr("standard output")));
}

TEST_F(StandardOutput, WhoseReaderHasLeftEndsAWatchAndRepeatedReads) {
    startHost();
    for (const char* const command : {"HOST ctl SITE watch", "HOST read LINK --station 5 R10 --every 1h"}) {
        const Ending ending = inShell(("exec " + std::string(command) + " > >(head -1)").c_str());
        EXPECT_EQ(ending.status, 0) << command;
        EXPECT_THAT(ending.errors, Not(HasSubstr("standard output"))) << command;
    }
}

TEST_F(StandardOutput, WhoseReaderHasLeftEndsNoRunThatHasMoreToDo) {
    const QString socket = folder.filePath(QStringLiteral("own.sock"));
    QProcess& host = shell(QStringLiteral("exec HOST run SITE --format lines --control ") + socket +
                           QStringLiteral(" > >(head -1)"));
    ASSERT_TRUE(tells(host, "nobody reads standard output any more; polling goes on"));
    EXPECT_TRUE(pollsOn());
    EXPECT_EQ(ctl({QStringLiteral("write"), QStringLiteral("pump-house/LEVEL=3"), QStringLiteral("--control"),
                   socket})
                  .status,
              0);
    EXPECT_EQ(memory().get(sim::Media::Registers, 10), 3U);
    host.terminate();
    EXPECT_EQ(endOf(host).status, 0);
}

TEST_F(StandardOutput, ThatWasClosedIsNotTakenForALineOrASocket) {
    for (const char* const closed : {"<&- >&- 2>&-", ">&-", "2>&-", "<&-"}) {
        const Ending ending = inShell((std::string("exec HOST read LINK --station 5 R10 ") + closed).c_str());
        EXPECT_EQ(ending.status, 0) << closed;
    }
    QProcess& host = shell(QStringLiteral("exec HOST run SITE --format lines <&- >&- 2>&-"));
    EXPECT_TRUE(pollsOn());
    for (const char* const descriptor : {"0", "1", "2"})
        EXPECT_EQ(QFile::symLinkTarget(
                      QStringLiteral("/proc/%1/fd/%2").arg(host.processId()).arg(QLatin1String(descriptor))),
                  QStringLiteral("/dev/null"));
    host.terminate();
    EXPECT_EQ(endOf(host).status, 0);
}

TEST_F(StandardOutput, OfTheSimulatorOnAFullDiskIsTold) {
    writeSerialSite();
    const Ending ending = inShell("exec SIM SITE --for 10ms > /dev/full");
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("sbus-sim: standard output could not be written: "));
}

TEST_F(StandardOutput, OfTheSimulatorThatWasClosedIsNotTakenForALine) {
    writeSerialSite();
    QProcess& program = shell(QStringLiteral("exec SIM SITE <&- >&- 2>&-"));
    // Whose device is there once the simulator minds signals.
    EXPECT_TRUE(
        eventually([this] { return QFileInfo(folder.filePath(QStringLiteral("line"))).isSymLink(); }));
    EXPECT_EQ(QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/1").arg(program.processId())),
              QStringLiteral("/dev/null"));
    program.terminate();
    endOf(program);
}
