#include "OneShotProgram.h"
#include "StopProgram.h"
#include "TextPattern.h"

// Reading from the command line, as its users meet it.

using sim::Media;
using testing::AllOf;
using testing::HasSubstr;

namespace {

class Read : public OneShotProgram {};
class ReadOnEveryLine : public OneShotOnEveryLine {};

std::size_t lineCount(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Lines, ReadOnEveryLine,
                         testing::Values(sim::Framing::Ethernet, sim::Framing::DataMode,
                                         sim::Framing::BreakMode),
                         framingName);

TEST_P(ReadOnEveryLine, PrintsALineForEachElement) {
    memory().set(Media::Registers, 10, 123);
    memory().set(Media::Registers, 11, 0xFFFF'FFFF);
    memory().setFloat(Media::Registers, 30, 1.5);
    memory().set(Media::Flags, 5, 1);
    memory().set(Media::Inputs, 2, 1);
    memory().set(Media::Timers, 3, 600);
    const Ending ending = run("read LINK R10..11 R30:float F5 I1..2 T3 C4 R10 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_EQ(ending.output,
              "R10 = 123\nR11 = -1\nR30:float = 1.5\nF5 = 1\nI1 = 0\nI2 = 1\nT3 = 600\nC4 = 0\nR10 = 123\n");
}

TEST_P(ReadOnEveryLine, ReadsFiveThousandRegisters) {
    std::string expected;
    for (unsigned number = 0; number < 5000; ++number) {
        memory().set(Media::Registers, number, 7 * number);
        expected += "R" + std::to_string(number) + " = " + std::to_string(7 * number) + "\n";
    }
    const Ending ending = run("read LINK R0..4999 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "") << "no progress bar but on a terminal";
    EXPECT_EQ(ending.output, expected);
}

TEST_P(ReadOnEveryLine, ReadsTheOtherElementsWhenSomeAreRefused) {
    const Ending ending = run("read LINK R5990..6005 R10 F1 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 3);
    EXPECT_EQ(ending.output, "R10 = 0\nF1 = 0\n");
    EXPECT_THAT(ending.errors,
                AllOf(HasSubstr(plainLink + ", station 5, R5990..6005: the controller refused the request"),
                      HasSubstr("check that it has all of these elements")));
    EXPECT_EQ(lineCount(ending.errors), 1U);
}

TEST_P(ReadOnEveryLine, EndsWithFourWhenEverythingIsRefused) {
    const Ending ending = run("read LINK R6000 T1600 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 4);
    EXPECT_EQ(ending.output, "");
    EXPECT_THAT(ending.errors, HasSubstr("refused"));
}

TEST_P(ReadOnEveryLine, EndsWithOneWhenTheStationDoesNotAnswer) {
    const Ending ending = run("read LINK R0..4999 --station 9 --timeout 100ms");
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.output, "");
    EXPECT_THAT(ending.errors, AllOf(HasSubstr(plainLink + ", station 9, R0..126, R127..253"),
                                     HasSubstr("no answer within 100 ms"), HasSubstr("station number 9")));
    EXPECT_EQ(lineCount(ending.errors), 1U);
    // Of 40 telegrams, each of which would be tried three times.
    EXPECT_LT(simulator.counts(lineId).foreignStations, 40U);
}

TEST_P(ReadOnEveryLine, AsksAgainForWhatGotLost) {
    sim::Faults faults;
    faults.drop = 1;
    simulator.setFaults(lineId, faults);
    QProcess program;
    start(program, "read LINK R0..999 --station 5 --timeout 2s");
    while (simulator.counts(lineId).faults.drop == 0 && program.state() != QProcess::NotRunning)
        program.waitForFinished(10);
    simulator.setFaults(lineId, {});
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 0) << ending.errors;
    EXPECT_EQ(lineCount(ending.output), 1000U);
}

TEST_F(Read, WritesJsonLines) {
    memory().set(Media::Registers, 10, 123);
    const Ending ending = run("read LINK R10 R6000 --station 5 --timeout 10s --format json");
    EXPECT_EQ(ending.status, 3);
    EXPECT_THAT(ending.output,
                MatchesPattern(
                    "\\{\"address\":\"R10\",\"value\":123,\"time\":\"[-0-9T:.]+Z\",\"quality\":\"good\"\\}\n"
                    "\\{\"address\":\"R6000\",\"value\":null,\"time\":null,\"quality\":\"bad\"\\}\n"));
}

TEST_F(Read, WritesCommaSeparatedValues) {
    memory().set(Media::Registers, 10, 123);
    const Ending ending = run("read LINK R10 R6000 --station 5 --timeout 10s --format csv");
    EXPECT_EQ(ending.status, 3);
    EXPECT_THAT(ending.output,
                MatchesPattern("address,value,time,quality\nR10,123,[-0-9T:.]+Z,good\nR6000,,,bad\n"));
}

TEST_F(Read, ReadsAgainSoManyTimes) {
    const Ending ending =
        run("read LINK R10..11 --station 5 --timeout 10s --every 20ms --count 3 --format csv");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(lineCount(ending.output), 7U) << "a header, and three times two elements";
    EXPECT_EQ(simulator.counts(lineId).telegrams, 3U);
}

TEST_P(ReadOnEveryLine, ReadsAgainUntilItIsInterrupted) {
    QProcess program;
    start(program, "read LINK R10 --station 5 --timeout 10s --every 10ms");
    QByteArray output;
    memory().set(Media::Registers, 10, 7);
    while (!output.contains("R10 = 7\n") && program.waitForReadyRead(60'000))
        output += program.readAllStandardOutput();
    memory().set(Media::Registers, 10, 8);
    while (!output.contains("R10 = 8\n") && program.waitForReadyRead(60'000))
        output += program.readAllStandardOutput();
    stopProgram(program, StopBy::Key);
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_TRUE(output.contains("R10 = 8\n"));
}

TEST_P(ReadOnEveryLine, IsInterruptedWhileItWaitsForAnAnswer) {
    QProcess program;
    start(program, "read LINK R10 --station 9 --timeout 24h");
    while (simulator.counts(lineId).foreignStations == 0 && program.state() != QProcess::NotRunning)
        program.waitForFinished(10);
    interrupt(program);
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("R10: interrupted before it was read"));
}

TEST_F(Read, GoesOnWhenTheStationComesBack) {
    simulator.silence(lineId, station, true);
    QProcess program;
    program.setReadChannel(QProcess::StandardError);
    start(program, "read LINK R10 --station 5 --timeout 100ms --every 10ms");
    ASSERT_TRUE(program.waitForReadyRead(60'000));
    simulator.silence(lineId, station, false);
    program.setReadChannel(QProcess::StandardOutput);
    ASSERT_TRUE(program.waitForReadyRead(60'000));
    stopProgram(program);
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 3) << "some readings were good, but not all";
    EXPECT_THAT(ending.output, HasSubstr("R10 = 0\n"));
    EXPECT_THAT(ending.errors, ContainsPattern("sbus-host: [0-9-]+ [0-9:.]+[+-][0-9:]+  udp://"));
}

TEST_F(Read, TellsALineThatCannotBeOpened) {
    const Ending serial = run("read serial:/no/such/device R10");
    EXPECT_EQ(serial.status, 1);
    EXPECT_THAT(serial.errors,
                AllOf(HasSubstr("cannot open serial:/no/such/device"),
                      HasSubstr("there is no device /no/such/device"), Not(HasSubstr("sbus-host ctl"))));
    const Ending ethernet = run("read udp://no-such-host.invalid R10");
    EXPECT_EQ(ethernet.status, 1);
    EXPECT_THAT(ethernet.errors, HasSubstr("check the host name and the network"));
}

TEST_F(Read, EndsWithTwoOnWrongUsage) {
    for (const char* const commandLine :
         {"read", "read LINK", "read nowhere R1", "read LINK X1", "read LINK R5..1",
          "read LINK R1 --station 255", "read LINK R1 --station x", "read LINK R1 --timeout 5",
          "read LINK R1 --timeout 0s", "read LINK R1 --mode fast", "read LINK R1 --break-delay -1",
          "read LINK R1 --count 2", "read LINK R1 --every 1s --count 0", "read LINK R1 --format xml",
          "read LINK R1 --plugin /no/such.so"}) {
        const Ending ending = run(commandLine);
        EXPECT_EQ(ending.status, 2) << commandLine;
        EXPECT_EQ(ending.output, "") << commandLine;
        EXPECT_NE(ending.errors, "") << commandLine;
    }
    EXPECT_THAT(run("read LINK R1 --station 255").errors, HasSubstr("broadcast"));
    EXPECT_EQ(simulator.counts(lineId).telegrams, 0U);
}

TEST_F(Read, EndsWhenNobodyReadsItsOutput) {
    QProcess program;
    QProcess reader;
    program.setStandardOutputProcess(&reader);
    start(program, "read LINK R10 --station 5 --timeout 10s --every 10ms");
    reader.start(QStringLiteral(SLEEPER_PROGRAM), QStringList());
    EXPECT_TRUE(reader.waitForFinished(60'000));
    EXPECT_TRUE(program.waitForFinished(60'000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
}
