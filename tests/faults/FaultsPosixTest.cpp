// Each call of the system that a program makes fails once, and nobody hangs, crashes or keeps it a secret.

#include "FaultedHost.h"
#include "Soak.h"

#include <gtest/gtest.h>

#include <iostream>
#include <set>
#include <sstream>

namespace {

// Enough of the places that are a thousand; there are few of the other kinds.
std::size_t mostPlaces() {
    return soak::count<std::size_t>(24, 1'000'000);
}

// What came of the places of a kind.
struct Tally {
    std::size_t tried = 0;
    std::size_t failed = 0; // another order of the threads may pass by another place
    std::size_t ended = 0;  // the program
    std::size_t told = 0;
    std::size_t silent = 0;

    void tell() const {
        soak::tellFigures(std::to_string(failed) + " of " + std::to_string(tried) +
                          " places: " + std::to_string(ended) + " ended, " + std::to_string(told) +
                          " went on and said so, " + std::to_string(silent) + " without effect");
    }
};

std::string textOf(const Place& place, const ProgramRun& run) {
    return place.kind + place.calls + "\nstandard error:\n" + run.errors;
}

void judge(const Place& place, const ProgramRun& run) {
    EXPECT_TRUE(run.hasReturned) << "hangs: " << textOf(place, run);
    EXPECT_FALSE(run.hasCrashed) << "crashes: " << textOf(place, run);
}

void judge(const Place& place, const Life& life) {
    judge(place, life.run);
    const std::string text = textOf(place, life.run);
    const bool isTold = !life.messages.empty();
    if (life.hasEndedByItself) {
        EXPECT_NE(life.run.status, 0) << text;
        EXPECT_TRUE(isTold) << "ends without a word: " << text;
        return;
    }
    EXPECT_TRUE(life.isFresh) << "does not recover: " << text;
    EXPECT_TRUE(life.hasReply) << "no result of the command: " << text;
    EXPECT_TRUE(life.hasPulseReply) << "no result of the pulse: " << text;
    EXPECT_TRUE(life.isPulseOver || isTold) << "leaves an output on without a word: " << text;
    EXPECT_TRUE(life.isSuccess || isTold) << "refuses without a word: " << text;
    EXPECT_TRUE(life.isWritten || !life.isSuccess) << "success without a write: " << text;
    EXPECT_TRUE(life.missing.empty() || isTold)
        << life.missing.front() << " is lost without a word: " << text;
    EXPECT_TRUE(life.shown == FaultedHost::points || isTold) << "values are lost without a word: " << text;
}

void tellLong(const Place& place, bool hasEnded, const ProgramRun& run) {
    if (soak::isLong())
        std::cout << (hasEnded ? "ended " + std::to_string(run.status) : "went on") << ": "
                  << textOf(place, run) << std::endl;
}

std::string nameOf(const testing::TestParamInfo<const char*>& info) {
    return info.param;
}

class FaultInHost : public testing::TestWithParam<const char*> {
protected:
    FaultedHost host;
};

// A program that does its work and ends.
class FaultInShortRun : public testing::Test {
protected:
    FaultInShortRun() : simulator({{sim::udpLine(1, {5})}}) { EXPECT_EQ(simulator.start(), ""); }

    std::string link() const { return "udp://localhost:" + std::to_string(simulator.port(1)); }
    QString pathOf(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }
    std::uint32_t registerOne() { return simulator.memory(1, 5).get(sim::Media::Registers, 1); }

    // `isDone` tells whether a run that calls itself a success was one; `prepare` comes before each.
    void failEach(const char* program, const QStringList& arguments,
                  const std::function<void()>& prepare = {},
                  const std::function<bool(const ProgramRun&)>& isDone = {}) {
        FaultyProgram faulty(QString::fromLatin1(program), arguments);
        const ProgramRun good = faulty.learn();
        ASSERT_EQ(good.status, 0) << good.errors;
        std::set<std::string> kinds;
        for (const Place& place : good.places)
            kinds.insert(place.kind);
        Tally tally;
        for (const std::string& kind : kinds)
            for (const Place& place : placesOf(good.places, kind, mostPlaces())) {
                if (prepare)
                    prepare();
                ++tally.tried;
                const ProgramRun run = faulty.runWithout(place);
                judge(place, run);
                EXPECT_TRUE(run.status == 0 || !run.errors.empty())
                    << "fails without a word: " << textOf(place, run);
                EXPECT_TRUE(!isDone || run.status != 0 || isDone(run))
                    << "no success: " << textOf(place, run);
                if (!run.hasFailed)
                    continue;
                ++tally.failed;
                ++(run.status != 0 ? tally.ended : run.errors.empty() ? tally.silent : tally.told);
                tellLong(place, run.status != 0, run);
            }
        EXPECT_GE(2 * tally.failed, tally.tried) << "too few of the places were met again";
        tally.tell();
    }

    const QTemporaryDir folder;
    sim::Simulator simulator;
};

} // namespace

TEST_P(FaultInHost, IsToldAndEndsItInOrderOrIsSurvived) {
    const Life good = host.learn();
    ASSERT_TRUE(good.isFresh && good.isSuccess && good.isWritten && good.missing.empty()) << good.run.errors;
    ASSERT_EQ(good.run.status, 0) << good.run.errors;
    ASSERT_EQ(good.shown, FaultedHost::points);
    ASSERT_EQ(good.messages, "");
    const std::vector<Place> places = placesOf(good.run.places, GetParam(), mostPlaces());
    ASSERT_FALSE(places.empty());
    Tally tally;
    for (const Place& place : places) {
        ++tally.tried;
        const Life life = host.live(place);
        judge(place, life);
        if (!life.run.hasFailed)
            continue;
        ++tally.failed;
        ++(life.hasEndedByItself ? tally.ended : life.messages.empty() ? tally.silent : tally.told);
        tellLong(place, life.hasEndedByItself, life.run);
    }
    EXPECT_GE(2 * tally.failed, tally.tried) << "too few of the places were met again";
    tally.tell();
}

INSTANTIATE_TEST_SUITE_P(At, FaultInHost,
                         testing::Values("accept", "bind", "connect", "listen", "memory", "mkdir", "open",
                                         "read", "receive", "rename", "send", "socket", "thread", "waits",
                                         "write"),
                         nameOf);

TEST_F(FaultInShortRun, OfReadIsToldOrSurvivedAndSuccessIsAValue) {
    simulator.memory(1, 5).set(sim::Media::Registers, 1, 4711);
    failEach(HOST_PROGRAM,
             {QStringLiteral("read"), QString::fromStdString(link()), QStringLiteral("R1"),
              QStringLiteral("--station"), QStringLiteral("5"), QStringLiteral("--capture"),
              pathOf("read.pcap")},
             {}, [](const ProgramRun& run) { return run.output.find("4711") != std::string::npos; });
}

TEST_F(FaultInShortRun, OfWriteIsToldOrSurvivedAndSuccessIsAWrite) {
    failEach(
        HOST_PROGRAM,
        {QStringLiteral("write"), QString::fromStdString(link()), QStringLiteral("R1=77"),
         QStringLiteral("--station"), QStringLiteral("5")},
        [this] { simulator.memory(1, 5).set(sim::Media::Registers, 1, 0); },
        [this](const ProgramRun&) { return registerOne() == 77; });
}

TEST_F(FaultInShortRun, OfTheSimulatorIsToldOrSurvived) {
    QFile site(pathOf("site.toml"));
    ASSERT_TRUE(site.open(QIODevice::WriteOnly));
    site.write(QByteArray("[[channel]]\nid = 1\ntype = \"SBus-Serial\"\nprimary = \"serial:") +
               pathOf("line").toUtf8() + "\"\n[[channel.rtu]]\nid = 1\nname = \"hill\"\nstation = 6\n");
    site.close();
    failEach(SIMULATOR_PROGRAM, {site.fileName(), QStringLiteral("--for"), QStringLiteral("20ms")});
}
