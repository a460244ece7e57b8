// The program, which records and shows.

#include "Eventually.h"
#include "HistoryRows.h"

#include <Simulator.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

constexpr int patienceMs = 60'000;
constexpr int lineId = 1;
constexpr int station = 5;

struct Ending {
    int status = -1;
    std::string output;
    std::string errors;
};

class HistoryProgram : public testing::Test {
protected:
    HistoryProgram() {
        EXPECT_EQ(simulator.start(), "");
        simulator.memory(lineId, station).set(sim::Media::Registers, 7, 210);
        for (const char* const variable : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME"})
            environment.insert(QString::fromLatin1(variable), folder.path());
        environment.insert(QStringLiteral("TZ"), QStringLiteral("Europe/Zurich"));
        host.setProcessEnvironment(environment);
        writeSite("LEVEL");
    }

    ~HistoryProgram() override {
        host.kill();
        host.waitForFinished(patienceMs);
    }

    void writeSite(const char* name) const {
        QFile file(site);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:" +
                   QByteArray::number(simulator.port(lineId)) +
                   "\"\n[[channel.rtu]]\nid = 1\nname = \"pump-house\"\nstation = 5\n"
                   "scan = { analog = \"100ms\" }\n"
                   "[[channel.rtu.point]]\nid = 1\nname = \"" +
                   QByteArray(name) +
                   "\"\nkind = \"analog\"\naddress = \"R7\"\n"
                   "scale = 0.1\nunit = \"m\"\ndecimals = 1\n[history]\nurl = \"sqlite:history.db\"\n");
    }

    Ending run(const QStringList& arguments) const {
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(HOST_PROGRAM), arguments);
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return {program.exitCode(), program.readAllStandardOutput().toStdString(),
                program.readAllStandardError().toStdString()};
    }
    Ending history(const QStringList& arguments) const {
        return run(QStringList{QStringLiteral("history"), site} + arguments);
    }

    void startHost() {
        host.start(QStringLiteral(HOST_PROGRAM), {QStringLiteral("run"), site, QStringLiteral("--format"),
                                                  QStringLiteral("json"), QStringLiteral("--no-control")});
        ASSERT_TRUE(host.waitForStarted(patienceMs));
    }
    void awaitRecorded(const char* text) {
        ASSERT_TRUE(eventually([&] {
            return history({QStringLiteral("pump-house/LEVEL")}).output.find(text) != std::string::npos;
        }));
    }
    void endHost() {
        host.terminate();
        ASSERT_TRUE(host.waitForFinished(patienceMs));
        EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().toStdString();
    }

    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    const QString picture = folder.filePath(QStringLiteral("level.svg"));
    sim::Simulator simulator{{{sim::udpLine(lineId, {station})}}};
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess host;
};

} // namespace

TEST_F(HistoryProgram, ShowsWhatAHostRecordsWhileItRunsAndAfterItsEnd) {
    startHost();
    awaitRecorded(",pump-house/LEVEL,21.0,m,good\n");
    simulator.memory(lineId, station).set(sim::Media::Registers, 7, 225);
    awaitRecorded(",pump-house/LEVEL,22.5,m,good\n");
    endHost();
    const Ending shown = history({QStringLiteral("pump-house/LEVEL")});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.errors, "");
    EXPECT_THAT(shown.output, MatchesRegex("time,point,value,unit,quality\n"
                                           "[^,]*[+]0[12]:00,pump-house/LEVEL,,m,not recorded\n"
                                           "[^,]*,pump-house/LEVEL,21.0,m,good\n"
                                           "[^,]*,pump-house/LEVEL,22.5,m,good\n"
                                           "(.*not recorded\n)?"));
}

TEST_F(HistoryProgram, ShowsAPointThatTheSiteHasNoLonger) {
    startHost();
    awaitRecorded("good");
    endHost();
    writeSite("DEPTH");
    EXPECT_THAT(history({QStringLiteral("pump-house/LEVEL")}).output,
                HasSubstr("pump-house/LEVEL,21,m,good"));
    const Ending neverRecorded = history({QStringLiteral("pump-house/DEPTH")});
    EXPECT_EQ(neverRecorded.status, 0);
    EXPECT_THAT(neverRecorded.output, Not(HasSubstr("good")));
    const Ending unknown = history({QStringLiteral("pump-house/LEVER")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("LEVER"));
}

TEST_F(HistoryProgram, DrawsAPictureButOverNoFile) {
    startHost();
    awaitRecorded("good");
    endHost();
    const QStringList arguments{QStringLiteral("pump-house/LEVEL"), QStringLiteral("--from"),
                                QStringLiteral("-1m"), QStringLiteral("--plot"), picture};
    EXPECT_EQ(history(arguments).status, 0);
    QFile file(picture);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string svg = file.readAll().toStdString();
    EXPECT_THAT(svg, HasSubstr("<path d=\"M"));
    EXPECT_THAT(svg, HasSubstr("Europe/Zurich"));
    const Ending again = history(arguments);
    EXPECT_EQ(again.status, 2);
    EXPECT_THAT(again.errors, HasSubstr("is there already"));
    EXPECT_EQ(history(arguments + QStringList{QStringLiteral("--force")}).status, 0);
}

TEST_F(HistoryProgram, ChecksThatItsFolderIsThere) {
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray good = file.readAll();
    file.close();
    EXPECT_EQ(run({QStringLiteral("check"), site}).errors, "");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray(good).replace("sqlite:history.db", "sqlite:not-there/history.db"));
    file.close();
    const Ending checked = run({QStringLiteral("check"), site});
    EXPECT_EQ(checked.status, 0);
    EXPECT_THAT(checked.errors, HasSubstr("warning: the history's folder"));
}

TEST_F(HistoryProgram, TellsWhatIsWrong) {
    const QString level = QStringLiteral("pump-house/LEVEL");
    EXPECT_THAT(history({level}).errors,
                HasSubstr("history.db is not there; a host that runs the site makes it"));
    startHost();
    awaitRecorded("good");
    endHost();
    const auto errors = [&](const QStringList& more) {
        const Ending ending = history(QStringList{level} + more);
        EXPECT_EQ(ending.status, 2);
        EXPECT_EQ(ending.output, "");
        return ending.errors;
    };
    EXPECT_THAT(errors({QStringLiteral("--from"), QStringLiteral("tomorrow")}), HasSubstr("is no time"));
    EXPECT_THAT(errors({QStringLiteral("--from"), QStringLiteral("now")}), HasSubstr("nothing lies between"));
    EXPECT_THAT(errors({QStringLiteral("--every"), QStringLiteral("1ms")}), HasSubstr("more than a million"));
    EXPECT_THAT(errors({QStringLiteral("--every"), QStringLiteral("soon")}), HasSubstr("is no time above 0"));
    EXPECT_NE(errors({QStringLiteral("--aggregate"), QStringLiteral("min")}), "") << "of what time?";
}
