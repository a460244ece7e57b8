#include "OneShotProgram.h"
#include "StopProgram.h"

#include <thread>

// Writing and setting the clock from the command line, as its users meet it.

using sim::Media;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class Write : public OneShotProgram {};
class WriteOnEveryLine : public OneShotOnEveryLine {};
class WriteOnSerialLine : public OneShotProgram {
protected:
    WriteOnSerialLine() : OneShotProgram(sim::Framing::DataMode) {}
};
class TimeSync : public OneShotProgram {};
class TimeSyncOnSerialLines : public OneShotOnEveryLine {};

} // namespace

INSTANTIATE_TEST_SUITE_P(Lines, WriteOnEveryLine,
                         testing::Values(sim::Framing::Ethernet, sim::Framing::DataMode,
                                         sim::Framing::BreakMode),
                         framingName);
INSTANTIATE_TEST_SUITE_P(Lines, TimeSyncOnSerialLines,
                         testing::Values(sim::Framing::DataMode, sim::Framing::BreakMode), framingName);

TEST_P(WriteOnEveryLine, PutsEachValueIntoItsElement) {
    memory().set(Media::Flags, 3, 1);
    const Ending ending = run("write LINK O200=1 F3=0 R10=12 R11=-13 R30:float=1.5 R31:float=-0.001 T5=100 "
                              "C7=2147483647 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_EQ(ending.output,
              "C7 = 2147483647\nR10 = 12\nR11 = -13\nR30:float = 1.5\nR31:float = -0.001\nT5 = 100\n"
              "O200 = 1\nF3 = 0\n");
    EXPECT_EQ(word(Media::Outputs, 200), 1U);
    EXPECT_EQ(word(Media::Flags, 3), 0U);
    EXPECT_EQ(word(Media::Registers, 10), 12U);
    EXPECT_EQ(static_cast<std::int32_t>(word(Media::Registers, 11)), -13);
    EXPECT_EQ(word(Media::Registers, 30), 0xC000'0041U);
    EXPECT_EQ(static_cast<float>(memory().getFloat(Media::Registers, 31)), -0.001F);
    EXPECT_EQ(word(Media::Timers, 5), 100U);
    EXPECT_EQ(word(Media::Counters, 7), 2147483647U);
}

TEST_F(Write, SendsConsecutiveRegistersAsLists) {
    std::string values;
    for (unsigned number = 100; number < 170; ++number)
        values += " R" + std::to_string(number) + "=" + std::to_string(number);
    const Ending ending = run("write LINK" + values + " --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 0) << ending.errors;
    for (unsigned number = 100; number < 170; ++number)
        EXPECT_EQ(word(Media::Registers, number), number);
    const unsigned writeRegisters = 14;
    EXPECT_EQ(simulator.counts(lineId).stations.at(station).telegrams.at(writeRegisters), 3U)
        << "31, 31 and 8 values";
}

TEST_P(WriteOnEveryLine, AFloatingPointZeroIsReadBackAsZero) {
    for (const char* const zero : {"0", "-0", "0.0"}) {
        memory().setFloat(Media::Registers, 30, 5);
        const Ending ending =
            run("write LINK R30:float=" + std::string(zero) + " --verify --station 5 --timeout 10s");
        EXPECT_EQ(ending.status, 0) << ending.errors;
        EXPECT_EQ(word(Media::Registers, 30), 0U) << zero;
        EXPECT_EQ(memory().getFloat(Media::Registers, 30), 0) << zero;
        EXPECT_EQ(run("read LINK R30:float --station 5 --timeout 10s").output, "R30:float = 0\n") << zero;
    }
}

TEST_F(Write, ReadsNoOutputs) {
    EXPECT_EQ(run("write LINK O1=1 F1=1 --station 5 --timeout 10s").status, 0);
    EXPECT_EQ(simulator.counts(lineId).telegrams, 2U);
}

TEST_P(WriteOnEveryLine, VerifiesWhatItWrote) {
    const Ending ending =
        run("write LINK O200=1 R10=12 R30:float=0.1 R10=13 --verify --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_EQ(word(Media::Registers, 10), 13U) << "the later of two writes to one element counts";
}

TEST_F(Write, TellsEachDifferenceWhenItVerifies) {
    QProcess program;
    start(program, "write LINK R10=12 R11=13 O5=1 --verify --station 5 --timeout 10s");
    // The controller's program has another opinion, all the time.
    while (program.state() != QProcess::NotRunning) {
        memory().set(Media::Registers, 10, 99);
        memory().set(Media::Outputs, 5, 0);
        program.waitForFinished(0);
        std::this_thread::yield();
    }
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 3);
    EXPECT_THAT(ending.errors,
                AllOf(HasSubstr("station 5, R10: 12 was written and acknowledged, but 99 was read back"),
                      HasSubstr("station 5, O5: 1 was written and acknowledged, but 0 was read back"),
                      Not(HasSubstr("R11"))));
}

TEST_P(WriteOnEveryLine, WritesTheOtherElementsWhenOneIsRefused) {
    const Ending ending = run("write LINK R6000=1 R10=12 O5=1 --verify --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 3);
    EXPECT_EQ(ending.output, "R10 = 12\nO5 = 1\n");
    EXPECT_THAT(ending.errors, AllOf(HasSubstr(plainLink + ", station 5, R6000: the controller refused"),
                                     HasSubstr("check that it has what is written")));
    EXPECT_EQ(word(Media::Registers, 10), 12U);
    EXPECT_EQ(word(Media::Outputs, 5), 1U);
}

TEST_P(WriteOnEveryLine, EndsWithFourWhenEverythingIsRefused) {
    const Ending ending = run("write LINK R6000=1 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 4);
    EXPECT_EQ(ending.output, "");
}

TEST_P(WriteOnEveryLine, EndsWithOneWhenTheStationDoesNotAnswer) {
    const Ending ending = run("write LINK O1=1 O2=1 O3=1 O4=1 --station 9 --timeout 100ms");
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.output, "");
    EXPECT_THAT(ending.errors, AllOf(HasSubstr(plainLink + ", station 9, O1 O2 O3: no answer"),
                                     HasSubstr("it may have been written or not"),
                                     HasSubstr("O4: not sent, since the station does not answer")));
}

TEST_P(WriteOnEveryLine, ADryRunTellsTheTelegramsAndSendsNothing) {
    const Ending ending = run("write LINK O200=1 R10=12 R11=13 R30:float=1.5 --dry-run --verify --station 5");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_THAT(ending.output,
                AllOf(HasSubstr(plainLink + ", station 5, nothing is sent:\n"),
                      HasSubstr("write 2 registers from R10: 12, 13\n  "),
                      HasSubstr("05 0E 09 00 0A 00 00 00 0C 00 00 00 0D "), HasSubstr("write R30: 1.5\n  "),
                      HasSubstr("05 0E 05 00 1E C0 00 00 41 "), HasSubstr("switch O200 on\n  "),
                      HasSubstr("05 0D 03 00 C8 00 01 "),
                      HasSubstr("when the line connects, the driver also reads: R10..11, R30\n"),
                      HasSubstr("read back")));
    EXPECT_EQ(ending.output.find("break of 1 ms") != std::string::npos,
              GetParam() == sim::Framing::BreakMode);
    // What is sent later finds the line as if nothing had been there before.
    EXPECT_EQ(run("read LINK O200 --station 5 --timeout 10s").output, "O200 = 0\n");
    EXPECT_EQ(simulator.counts(lineId).telegrams, 1U);
    EXPECT_EQ(simulator.counts(lineId).bytesDiscarded, 0U);
}

TEST_F(Write, ADryRunTellsOfNoReadsWhereThereAreNone) {
    EXPECT_THAT(run("write LINK O200=1 --dry-run").output, Not(HasSubstr("read")));
}

// The first is no number that 32 bits hold: what is told is the one that will be there.
TEST_F(Write, ADryRunTellsTheNumbersOfIeeeWords) {
    EXPECT_THAT(run("write LINK R30:ieee=0.123456789 R31=7 R32:ieee=-1.5 --dry-run").output,
                HasSubstr("write 3 registers from R30: 1039980266, 7, -1077936128 (R30 is 0.12345679, R32 is "
                          "-1.5)\n  "));
}

TEST_F(Write, EndsWithTwoOnWrongUsage) {
    for (const char* const commandLine :
         {"write LINK", "write LINK R10", "write LINK O1=2", "write LINK I1=1", "write LINK T1=-1",
          "write LINK R1=1.5", "write LINK R1:float=1e30", "write LINK R1..2=5",
          "write LINK R1=1 --station 255", "time-sync", "time-sync nowhere",
          "time-sync LINK --timeout 0ms"}) {
        const Ending ending = run(commandLine);
        EXPECT_EQ(ending.status, 2) << commandLine;
        EXPECT_NE(ending.errors, "") << commandLine;
    }
    EXPECT_EQ(simulator.counts(lineId).telegrams, 0U);
}

TEST_P(WriteOnEveryLine, IsInterruptedWhileItWaitsForAnAnswer) {
    QProcess program;
    start(program, "write LINK O1=1 O2=1 --station 9 --timeout 24h");
    while (simulator.counts(lineId).foreignStations == 0 && program.state() != QProcess::NotRunning)
        program.waitForFinished(10);
    stopProgram(program, StopBy::Key);
    const Ending ending = endOf(program);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors,
                AllOf(HasSubstr("O1: interrupted before it was answered; it may have been written or not"),
                      HasSubstr("O2: interrupted before it was sent")));
}

TEST_F(WriteOnSerialLine, TellsHowToCommandTheHostThatHasTheDevice) {
    QProcess other;
    start(other, "read LINK R10 --station 5 --timeout 10s --every 10ms");
    ASSERT_TRUE(other.waitForReadyRead(60'000));
    const Ending ending = run("write LINK O1=1 --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, AllOf(HasSubstr("another program has "), HasSubstr("sbus-host ctl")));
    EXPECT_EQ(word(Media::Outputs, 1), 0U);
    stopProgram(other);
    EXPECT_EQ(endOf(other).status, 0);
}

TEST_P(TimeSyncOnSerialLines, SetsTheControllersClock) {
    const Ending ending = run("time-sync LINK --station 5 --timeout 10s");
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    EXPECT_THAT(ending.output, HasSubstr(plainLink + ", station 5: set the clock to 20"));
    EXPECT_EQ(simulator.counts(lineId).clockSettings.size(), 1U);
}

TEST_F(TimeSync, IsNotPossibleOnEthernet) {
    const Ending ending = run("time-sync LINK --station 5");
    EXPECT_EQ(ending.status, 2);
    EXPECT_EQ(ending.output, "");
    EXPECT_THAT(ending.errors, HasSubstr("station 5, clock: not possible on Ethernet"));
    EXPECT_EQ(simulator.counts(lineId).telegrams, 0U);
}
