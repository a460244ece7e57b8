#include "HostProgram.h"
#include "StopProgram.h"

// A pulse runs, and the host ends: the driver's release ends with it.

using sim::Media;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int forcedExitStatus = 130;

class StoppedPulse : public HostProgram {
protected:
    void pulse() {
        const Ending ending = ctl({QStringLiteral("write"), QStringLiteral("pump-house/VALVE=1")});
        ASSERT_EQ(ending.status, 0) << ending.output << ending.errors;
        ASSERT_EQ(valve(), 1U);
    }
    std::uint32_t valve() { return memory().get(Media::Outputs, 40); }
};

class StoppedPulseBySignal : public StoppedPulse, public testing::WithParamInterface<StopBy> {};

} // namespace

TEST_P(StoppedPulseBySignal, IsEndedBeforeTheHostEnds) {
    QProcess& host = startHost();
    pulse();
    stopProgram(host, GetParam());
    const Ending ending = endOf(host);
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(valve(), 0U);
    EXPECT_THAT(ending.errors, HasSubstr("\"VALVE\" (O40): its pulse is ended"));
}

INSTANTIATE_TEST_SUITE_P(Signals, StoppedPulseBySignal,
                         testing::Values(StopBy::Key, StopBy::System, StopBy::ClosedTerminal));

TEST_F(StoppedPulse, IsEndedWhenTheTimeOfTheRunIsOver) {
    QProcess& host = startHost({QStringLiteral("--for"), QStringLiteral("10s")});
    pulse();
    EXPECT_EQ(endOf(host).status, 0);
    EXPECT_EQ(valve(), 0U);
}

TEST_F(StoppedPulse, IsEndedAtTheElementThatItHasSwitchedOn) {
    writeSite("1,VALVE,status,O39,,,O40,,60000\n2,PUMP,status,O41,,1,,,60000\n");
    QProcess& host = startHost();
    pulse();
    ASSERT_EQ(ctl({QStringLiteral("write"), QStringLiteral("pump-house/PUMP=1")}).status, 0);
    ASSERT_EQ(memory().get(Media::Outputs, 41), 1U);
    stopProgram(host);
    EXPECT_EQ(endOf(host).status, 0);
    EXPECT_EQ(valve(), 0U);
    EXPECT_EQ(memory().get(Media::Outputs, 41), 0U);
}

TEST_F(StoppedPulse, IsNamedWhenItHadToBeLeftOnAndEndedByTheNextHost) {
    writeSite("1,VALVE,status,O40,,,,,4000\n");
    QProcess& host = startHost();
    pulse();
    simulator.silence(lineId, station, true);
    stopProgram(host);
    const Ending ending = endOf(host);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.errors, HasSubstr("\"VALVE\" (O40): left on, or it may be"));
    EXPECT_EQ(valve(), 1U);

    simulator.silence(lineId, station, false);
    QProcess& next = startHost();
    EXPECT_TRUE(eventually([this] { return valve() == 0; }));
    stopProgram(next);
    EXPECT_THAT(endOf(next).errors, HasSubstr("its pulse ran when this site's host last ended"));
}

TEST_F(StoppedPulse, IsNamedBeforeASecondSignalEndsTheHostAtOnce) {
    QProcess& host = startHost();
    pulse();
    simulator.silence(lineId, station, true);
    stopProgram(host, StopBy::Key);
    stopProgram(host, StopBy::System); // another one, so that the system does not make one of the two
    const Ending ending = endOf(host);
    EXPECT_EQ(ending.status, forcedExitStatus);
    EXPECT_THAT(ending.errors, HasSubstr("\"VALVE\" (O40): left on, or it may be"));
}

TEST_F(StoppedPulse, OfAKilledHostIsEndedByTheNextOne) {
    QProcess& killed = startHost();
    pulse();
    killed.kill();
    ASSERT_TRUE(killed.waitForFinished(patienceMs));
    EXPECT_EQ(valve(), 1U);
    QProcess& next = startHost();
    EXPECT_TRUE(eventually([this] { return valve() == 0; }));
    stopProgram(next);
    const Ending ending = endOf(next);
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.errors, AllOf(HasSubstr("its pulse ran when this site's host last ended"),
                                     HasSubstr("it is switched off now")));

    QProcess& third = startHost();
    stopProgram(third);
    EXPECT_THAT(endOf(third).errors, Not(HasSubstr("pulse")));
}

TEST_F(StoppedPulse, OfAKilledHostIsLeftAloneWhereThePointIsAnotherOneNow) {
    QProcess& killed = startHost();
    pulse();
    killed.kill();
    ASSERT_TRUE(killed.waitForFinished(patienceMs));
    writeSite("1,VALVE,status,O41,,,,,60000\n");
    memory().set(Media::Outputs, 41, 1);
    QProcess& next = startHost();
    stopProgram(next);
    EXPECT_THAT(endOf(next).errors, HasSubstr("not switched off: see to it at the controller"));
    EXPECT_EQ(memory().get(Media::Outputs, 41), 1U);
    EXPECT_EQ(valve(), 1U);
}

TEST_F(StoppedPulse, IsRememberedInTheDirectoryThatWasNamed) {
    environment.remove(QStringLiteral("XDG_STATE_HOME"));
    const QString directory = folder.filePath(QStringLiteral("states"));
    startHost({QStringLiteral("--state-dir"), directory});
    pulse();
    EXPECT_EQ(
        QDir(directory + QStringLiteral("/sbus-host")).entryList({QStringLiteral("pulses-*.json")}).size(),
        1);
}
