#include "StopProgram.h"
#include "TextPattern.h"

#include <ProgramVersion.h>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The program as its users meet it.

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int patienceMs = 60'000;

// With the zone: "2026-11-22 10:30:00.125+01:00"
const std::string timePattern =
    "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}[+-][0-9]{2}:[0-9]{2}";

struct Ending {
    int status = -1;
    std::string output;
    std::string errors;
};

Ending endOf(QProcess& program) {
    EXPECT_TRUE(program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    return {program.exitCode(), program.readAllStandardOutput().toStdString(),
            program.readAllStandardError().toStdString()};
}

Ending run(const QStringList& arguments) {
    QProcess program;
    program.start(QStringLiteral(HOST_PROGRAM), arguments);
    return endOf(program);
}

class Program : public testing::Test {
protected:
    QString writeSite(const char* text) {
        QString path = directory.filePath(QStringLiteral("site.toml"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }

    std::string contentsOf(const QString& name) {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return file.readAll().toStdString();
    }

    // One RTU that nobody plays.
    QString silentSite() {
        return writeSite(
            "[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:9\"\n"
            "[[channel.rtu]]\nid = 1\nname = \"tank\"\nstation = 1\ntimeout = \"100ms\"\n"
            "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R1\"\n");
    }

    const QTemporaryDir directory;
};

} // namespace

TEST_F(Program, ChecksTheDemoSite) {
    const Ending ending = run({QStringLiteral("check"), QStringLiteral(DEMO_SITE)});
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_THAT(ending.output, HasSubstr("the scan periods fit"));
}

TEST_F(Program, StartsNothingOfABadSite) {
    const QString site =
        writeSite("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://\"\nx = 1\n");
    for (const char* const command : {"check", "run"}) {
        const Ending ending = run({QString::fromLatin1(command), site});
        EXPECT_EQ(ending.status, 2) << command;
        EXPECT_THAT(ending.errors, HasSubstr("site.toml:4:11: error: "));
        EXPECT_THAT(ending.errors, HasSubstr("site.toml:5:1: error: unknown key \"x\""));
        EXPECT_EQ(ending.output, "");
    }
}

TEST_F(Program, StartsNothingOfALineThatIsTooSlowForItsTelegrams) {
    std::string points = "id,name,kind,address\n";
    for (int i = 0; i < 127; ++i)
        points += QStringLiteral("%1,P%1,analog,R%1\n").arg(i).toStdString();
    QFile table(directory.filePath(QStringLiteral("points.csv")));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly));
    table.write(points.data(), static_cast<qint64>(points.size()));
    table.close();
    const QString site =
        writeSite("[[channel]]\nid = 1\ntype = \"SBus-Serial\"\nprimary = \"serial:/dev/none?baud=4800\"\n"
                  "[[channel.rtu]]\nid = 1\nstation = 1\npoints = \"points.csv\"\n");
    for (const char* const command : {"check", "run"}) {
        const Ending ending = run({QString::fromLatin1(command), site});
        EXPECT_EQ(ending.status, 2) << command;
        EXPECT_THAT(ending.errors, HasSubstr("site.toml:6:6: error: RTU 1 \"rtu-1\" on serial:/dev/none?"));
        EXPECT_THAT(ending.errors, HasSubstr("request and answer take 1085 ms at 4800 baud"));
        EXPECT_EQ(ending.output, "");
    }
}

TEST_F(Program, EndsWithTwoOnWrongUsage) {
    const QString site = silentSite();
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({QStringLiteral("fly")}).status, 2);
    EXPECT_EQ(run({QStringLiteral("run")}).status, 2);
    for (const char* const duration : {"10", "0s"})
        EXPECT_EQ(
            run({QStringLiteral("run"), site, QStringLiteral("--for"), QString::fromLatin1(duration)}).status,
            2)
            << duration;
    for (const char* const format : {"xml", "0", ""})
        EXPECT_EQ(run({QStringLiteral("run"), site, QStringLiteral("--format"), QString::fromLatin1(format)})
                      .status,
                  2)
            << format;
    EXPECT_EQ(
        run({QStringLiteral("run"), site, QStringLiteral("--plugin"), QStringLiteral("/no/such.so")}).status,
        2);
    EXPECT_EQ(run({QStringLiteral("--help")}).status, 0);
}

TEST_F(Program, NamesTheFormatsInItsHelp) {
    const Ending ending = run({QStringLiteral("run"), QStringLiteral("--help")});
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, HasSubstr("{table,lines,json,csv}"));
}

TEST_F(Program, EndsWithOneWhenAControllerIsSilent) {
    const Ending ending =
        run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"), QStringLiteral("1s")});
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("RTU 1 \"tank\" (station 1): no answer within 100 ms"));
    EXPECT_THAT(ending.output, HasSubstr("never read"));
}

TEST_F(Program, KeepsTheSummaryOutOfMachineReadableOutput) {
    const QString site = silentSite();
    for (const char* const format : {"json", "csv"}) {
        const Ending ending =
            run({QStringLiteral("run"), site, QStringLiteral("--for"), QStringLiteral("200ms"),
                 QStringLiteral("--format"), QString::fromLatin1(format)});
        EXPECT_THAT(ending.errors, HasSubstr("requests"));
        EXPECT_THAT(ending.output, Not(HasSubstr("requests")));
    }
}

TEST_F(Program, ShowsTheFramesThatItSends) {
    const Ending ending = run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"),
                               QStringLiteral("1s"), QStringLiteral("--frames")});
    EXPECT_THAT(
        ending.errors,
        HasSubstr("channel-1, station 1  << read R1\n    00 00 00 10 01 00 00 00 00 01 06 00 00 01 "));
}

TEST_F(Program, EndsInOrderOnATerminationSignal) {
    QProcess program;
    program.start(QStringLiteral(HOST_PROGRAM), {QStringLiteral("run"), silentSite()});
    program.setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(program.waitForReadyRead(patienceMs)); // it runs: the first failure is told
    stopProgram(program);
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.output, HasSubstr("tank"));
}

TEST_F(Program, EndsWhenNobodyReadsItsOutput) {
    QProcess program;
    QProcess reader;
    program.setStandardOutputProcess(&reader);
    program.start(QStringLiteral(HOST_PROGRAM),
                  {QStringLiteral("run"), silentSite(), QStringLiteral("--format"), QStringLiteral("csv"),
                   QStringLiteral("--for"), QStringLiteral("1s")});
    reader.start(QStringLiteral(SLEEPER_PROGRAM), QStringList());
    EXPECT_TRUE(reader.waitForFinished(patienceMs));
    EXPECT_TRUE(program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
}

TEST_F(Program, WritesLogFiles) {
    const QString logs = directory.filePath(QStringLiteral("a/b"));
    run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"), QStringLiteral("500ms"),
         QStringLiteral("--log-dir"), logs});
    EXPECT_EQ(QDir(logs).entryList(QDir::Files),
              (QStringList{QStringLiteral("channel-1.log"), QStringLiteral("host.log")}));
}

TEST_F(Program, LogsTheMessagesThatPeopleRead) {
    const Ending ending = run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"),
                               QStringLiteral("500ms"), QStringLiteral("--log-dir"), directory.path()});
    const std::string message = "RTU 1 \"tank\" (station 1): no answer within 100 ms";
    EXPECT_THAT(ending.errors, ContainsPattern("^" + timePattern + "  channel 1 "));
    EXPECT_THAT(ending.errors, HasSubstr(message));
    const std::string log = contentsOf(QStringLiteral("host.log"));
    EXPECT_THAT(log, ContainsPattern("^" + timePattern + " channel 1 "));
    EXPECT_THAT(log, HasSubstr(message));
}

// The driver's own trace of such a telegram shows zeros for the answer that never came.
TEST_F(Program, LogsTheTelegramsThatHavePassedTheWireAndNoOthers) {
    run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"), QStringLiteral("500ms"),
         QStringLiteral("--log-dir"), directory.path(), QStringLiteral("--frames")});
    const std::string log = contentsOf(QStringLiteral("channel-1.log"));
    EXPECT_THAT(log, HasSubstr("channel-1, station 1  << read R1  | 00 00 00 10 01 00 00 00 00 01 06 "));
    EXPECT_THAT(log, HasSubstr("channel-1, station 1  >> no answer\n"));
    EXPECT_THAT(log, Not(HasSubstr("eceive")));
}

TEST_F(Program, KeepsNoMoreLogFilesThanItIsToldTo) {
    run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"), QStringLiteral("1s"),
         QStringLiteral("--log-dir"), directory.path(), QStringLiteral("--frames"),
         QStringLiteral("--log-size"), QStringLiteral("200B"), QStringLiteral("--log-files"),
         QStringLiteral("2")});
    const QStringList logs = QDir(directory.path()).entryList({QStringLiteral("channel-1*")}, QDir::Files);
    EXPECT_EQ(logs, (QStringList{QStringLiteral("channel-1.1.log"), QStringLiteral("channel-1.log")}));
    EXPECT_LE(contentsOf(QStringLiteral("channel-1.log")).size(), 200U);
}

TEST_F(Program, TellsEachPointThatIsNeverReadOnceInEveryStream) {
    for (const char* const format : {"lines", "json", "csv"}) {
        const Ending ending =
            run({QStringLiteral("run"), silentSite(), QStringLiteral("--for"), QStringLiteral("200ms"),
                 QStringLiteral("--format"), QString::fromLatin1(format)});
        EXPECT_THAT(ending.output, HasSubstr("LEVEL")) << format;
        EXPECT_EQ(ending.output.find("LEVEL"), ending.output.rfind("LEVEL")) << format;
        EXPECT_THAT(ending.output, HasSubstr("never read")) << format;
    }
}

TEST_F(Program, TellsVersionCommitAndQt) {
    const Ending ending = run({QStringLiteral("--version")});
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.output, "sbus-host " PROJECT_VERSION "\n" + std::string(release::commit()) + "\nQt " +
                                 qVersion() + "\n");
}

TEST_F(Program, NamesTheCommandsThatThereAreInPlaceOfAnUnknownOne) {
    EXPECT_THAT(run({QStringLiteral("fly"), QStringLiteral("--fast")}).errors,
                HasSubstr("there is no command \"fly\"; it is one of run, check, "));
    EXPECT_THAT(run({QStringLiteral("ctl"), silentSite(), QStringLiteral("fly")}).errors,
                HasSubstr("there is no command \"fly\"; it is one of "));
    EXPECT_THAT(run({}).errors, HasSubstr("a command is missing; it is one of run, "));
    EXPECT_THAT(run({QStringLiteral("--fly")}).errors, Not(HasSubstr("a command is missing")));
}

TEST_F(Program, NamesTheSiteInTheUsageOfEveryControlCommand) {
    const Ending ending =
        run({QStringLiteral("ctl"), silentSite(), QStringLiteral("write"), QStringLiteral("--help")});
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, HasSubstr("Usage: sbus-host ctl SITE write [OPTIONS] VALUES..."));
}
