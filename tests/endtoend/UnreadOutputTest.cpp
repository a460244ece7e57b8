#include "Plant.h"
#include "StopProgram.h"

#include <Simulator.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A reader that holds the host's output open and does not read it: a pager that waits for a key, a terminal
// that was stopped.

namespace {

constexpr int patienceMs = 60'000;
constexpr int pointCount = 2000; // each change is a line of JSON: far more than a pipe holds

QString writeSite(const QTemporaryDir& directory, unsigned port) {
    QFile table(directory.filePath(QStringLiteral("points.csv")));
    EXPECT_TRUE(table.open(QIODevice::WriteOnly));
    table.write("id,name,kind,address\n");
    for (int number = 1; number <= pointCount; ++number)
        table.write(QStringLiteral("%1,LEVEL_%1,analog,R%1\n").arg(number).toLatin1());
    QFile site(directory.filePath(QStringLiteral("site.toml")));
    EXPECT_TRUE(site.open(QIODevice::WriteOnly));
    site.write(QStringLiteral("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\n"
                              "primary = \"udp://127.0.0.1:%1\"\n"
                              "[[channel.rtu]]\nid = 1\nname = \"tank\"\nstation = 1\ntimeout = \"500ms\"\n"
                              "points = \"points.csv\"\nscan = { analog = \"100ms\" }\n")
                   .arg(port)
                   .toLatin1());
    return site.fileName();
}

class UnreadOutput : public testing::TestWithParam<const char*> {
protected:
    void TearDown() override {
        reader.kill();
        EXPECT_TRUE(reader.waitForFinished(patienceMs));
    }

    const QTemporaryDir directory;
    QProcess program;
    QProcess reader;
};

} // namespace

TEST_P(UnreadOutput, DoesNotHoldUpTheEndAfterASignal) {
    sim::Options moving;
    moving.move = true;
    sim::Simulator simulator({{sim::udpLine(1, {1})}}, moving);
    ASSERT_EQ(simulator.start(), "");
    const QString site = writeSite(directory, simulator.port(1));

    program.setProcessChannelMode(QProcess::MergedChannels);
    program.setStandardOutputProcess(&reader);
    program.start(QStringLiteral(HOST_PROGRAM),
                  {QStringLiteral("run"), site, QStringLiteral("--format"), QString::fromLatin1(GetParam()),
                   QStringLiteral("--frames")});
    reader.start(QStringLiteral(SLEEPER_PROGRAM), {QStringLiteral("600")});
    ASSERT_TRUE(program.waitForStarted(patienceMs));
    constexpr std::uint64_t telegramsOfPoll = pointCount / 127 + 1;
    ASSERT_TRUE(Plant::eventually([&] { return simulator.counts(1).telegrams > 20 * telegramsOfPoll; }));

    stopProgram(program);
    EXPECT_TRUE(program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, UnreadOutput, testing::Values("json", "lines"),
                         [](const auto& format) { return std::string(format.param); });
