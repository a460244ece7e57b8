#include "OneShotProgram.h"
#include "TextPattern.h"

#include <QFile>

// Looking for stations from the command line. Of the stations, 5 is there.

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class Scan : public OneShotProgram {
protected:
    std::string filePath(const char* name) const {
        return folder.filePath(QString::fromLatin1(name)).toStdString();
    }
    static std::string textOf(const std::string& path) {
        QFile file(QString::fromStdString(path));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
        return file.readAll().toStdString();
    }
};

class ScanInDataMode : public OneShotProgram {
protected:
    ScanInDataMode() : OneShotProgram(sim::Framing::DataMode) {}
};

class ScanOnEveryLine : public OneShotOnEveryLine {
protected:
    // A program that takes none of the options that every other test gives it.
    static Ending check(const std::string& path) {
        QProcess program;
        program.start(QStringLiteral(HOST_PROGRAM), {QStringLiteral("check"), QString::fromStdString(path)});
        return endOf(program);
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Lines, ScanOnEveryLine,
                         testing::Values(sim::Framing::Ethernet, sim::Framing::DataMode,
                                         sim::Framing::BreakMode),
                         framingName);

TEST_P(ScanOnEveryLine, FindsTheStationAndWritesASiteFileThatPassesTheChecks) {
    memory().set(sim::Media::Registers, 0, 123);
    const std::string site = folder.filePath(QStringLiteral("site.toml")).toStdString();
    const Ending ending = run("scan LINK --stations 2,4..7 --timeout 1s -o " + site);
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, MatchesPattern("station 5[^:]*: answers in [0-9.]+ ms, R0 = 123\n"));
    EXPECT_THAT(ending.errors,
                AllOf(HasSubstr("asking 5 stations of " + plainLink), HasSubstr("if none answers"),
                      HasSubstr("wrote " + site), Not(HasSubstr("%"))));
    const Ending checked = check(site);
    EXPECT_EQ(checked.status, 0);
    EXPECT_EQ(checked.errors, "");
    EXPECT_THAT(checked.output, HasSubstr("RTU 1 \"station-5\", station 5"));
}

TEST_P(ScanOnEveryLine, CountsAStationThatRefuses) {
    sim::Faults faults;
    faults.nak = 1;
    simulator.setFaults(lineId, faults);
    const Ending ending = run("scan LINK --stations 5 --timeout 1s");
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, AllOf(HasSubstr("station 5"), HasSubstr("but refuses the read of R0 (")));
}

TEST_P(ScanOnEveryLine, EndsWithOneWhenNobodyAnswers) {
    const Ending ending = run("scan LINK --stations 6..9 --timeout 50ms");
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.output, "");
    EXPECT_THAT(ending.errors, HasSubstr("none of 4 stations answers within 50 ms"));
    EXPECT_GE(simulator.counts(lineId).foreignStations, 4U);
}

TEST_P(ScanOnEveryLine, IsInterruptedWithWhatItHasFound) {
    QProcess program;
    start(program, "scan LINK --stations 5..9 --timeout 24h --format json");
    while (simulator.counts(lineId).foreignStations == 0 && program.state() != QProcess::NotRunning)
        program.waitForFinished(10);
    interrupt(program);
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, HasSubstr("\"station\":5,\"result\":\"answers\""));
    EXPECT_THAT(ending.errors, HasSubstr("interrupted: 1 of 5 stations were asked"));
}

TEST_F(Scan, OverwritesASiteFileOnlyWhenToldTo) {
    const std::string site = filePath("site.toml");
    EXPECT_EQ(run("scan LINK --stations 5 --timeout 1s -o " + site).status, 0);
    const std::string before = textOf(site);
    const quint64 telegrams = simulator.counts(lineId).telegrams;
    const Ending refused = run("scan LINK --stations 4..5 --timeout 1s -o " + site);
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors,
                HasSubstr("is there already; name another file, or overwrite it with --force"));
    EXPECT_EQ(simulator.counts(lineId).telegrams, telegrams) << "told before anybody is asked";
    EXPECT_EQ(textOf(site), before);

    QFile::resize(QString::fromStdString(site), 0);
    EXPECT_EQ(run("scan LINK --stations 5 --timeout 1s --force -o " + site).status, 0);
    EXPECT_EQ(textOf(site), before);
}

TEST_F(Scan, WritesNoSiteFileWhenNobodyAnswers) {
    const std::string site = filePath("site.toml");
    EXPECT_EQ(run("scan LINK --stations 6 --timeout 50ms -o " + site).status, 1);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(site)));
}

TEST_F(Scan, TellsASiteFileThatCannotBeWritten) {
    const Ending ending = run("scan LINK --stations 5 --timeout 1s -o " + filePath("no/such/site.toml"));
    EXPECT_EQ(ending.status, 2);
    EXPECT_THAT(ending.output, HasSubstr("station 5: answers")) << "what was found is not lost";
    EXPECT_THAT(ending.errors, HasSubstr("cannot be written"));
}

TEST_F(Scan, NeverWrites) {
    EXPECT_EQ(run("scan LINK --stations 5 --timeout 1s").status, 0);
    EXPECT_EQ(simulator.counts(lineId).writesInAll, 0U);
    EXPECT_GE(simulator.counts(lineId).telegrams, 2U) << "who answers is asked once more";
}

TEST_F(Scan, TellsALineThatCannotBeOpened) {
    const Ending ending = run("scan serial:/no/such/device --stations 5 --baud 9600,19200");
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, AllOf(HasSubstr("asking 1 station of serial:/no/such/device in 2 ways"),
                                     HasSubstr("cannot open serial:/no/such/device?baud=9600"),
                                     Not(HasSubstr("cannot open serial:/no/such/device?baud=19200"))));
}

TEST_F(Scan, EndsWithTwoOnWrongUsage) {
    for (const char* const commandLine :
         {"scan", "scan nowhere", "scan LINK --stations 255", "scan LINK --stations 9..5",
          "scan LINK --baud 9600", "scan LINK --mode data", "scan serial:/dev/x --baud 0",
          "scan serial:/dev/x --baud 600", "scan serial:/dev/x --mode fast", "scan LINK --timeout 5",
          "scan LINK --force", "scan LINK --format csv", "scan LINK --plugin /no/such.so"}) {
        const Ending ending = run(commandLine);
        EXPECT_EQ(ending.status, 2) << commandLine;
        EXPECT_EQ(ending.output, "") << commandLine;
        EXPECT_NE(ending.errors, "") << commandLine;
    }
    EXPECT_EQ(simulator.counts(lineId).telegrams, 0U);
}

// The simulated controller hears all baud rates: a pseudo-terminal has none.
TEST_F(ScanInDataMode, AsksInEachWayOfALine) {
    const Ending ending = run("scan LINK --stations 5 --timeout 200ms --baud 9600,38400 --mode data,break");
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, AllOf(HasSubstr("station 5 at 9600 baud, transmit type data: answers"),
                                     HasSubstr("station 5 at 38400 baud, transmit type data: answers"),
                                     Not(HasSubstr("type break: answers"))));
    EXPECT_THAT(ending.errors, HasSubstr("in 4 ways"));
}
