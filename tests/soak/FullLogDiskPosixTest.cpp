// The host as a program, with a log whose disk is full: /dev/full takes files and refuses every byte.

#include "Plant.h"
#include "Soak.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace soak;
using testing::HasSubstr;

namespace {

constexpr int patienceMs = 120'000;
constexpr int fullLine = 1;    // Ethernet; the log of its channel cannot be written
constexpr int healthyLine = 2; // serial
constexpr int station = 5;

class FullLogDisk : public testing::Test {
protected:
    FullLogDisk() {
        EXPECT_EQ(simulator.start(), "");
        std::filesystem::create_directory(logs.toStdString());
        std::filesystem::create_symlink("/dev/full", logFile(fullLine).toStdString());
        program.setStandardOutputFile(folder.filePath(QStringLiteral("output")));
        program.setStandardErrorFile(folder.filePath(QStringLiteral("errors")));
    }

    ~FullLogDisk() override {
        program.kill();
        program.waitForFinished(patienceMs);
    }

    QString logFile(int line) const { return logs + QStringLiteral("/channel-%1.log").arg(line); }

    QByteArray contents(const QString& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString writeSite() const {
        QFile site(folder.filePath(QStringLiteral("site.toml")));
        EXPECT_TRUE(site.open(QIODevice::WriteOnly));
        const QString channel = QStringLiteral(
            "[[channel]]\nid = %1\ntype = \"%2\"\nprimary = \"%3\"\n"
            "[[channel.rtu]]\nid = 5\nname = \"tank%1\"\nstation = 5\ntimeout = \"10s\"\n"
            "scan = { analog = \"50ms\" }\n"
            "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R1\"\n");
        site.write(channel
                       .arg(QString::number(fullLine), QStringLiteral("SBus-Ethernet"),
                            QStringLiteral("udp://127.0.0.1:%1").arg(simulator.port(fullLine)))
                       .toUtf8());
        site.write(
            channel
                .arg(QString::number(healthyLine), QStringLiteral("SBus-Serial"),
                     QStringLiteral("serial:%1").arg(QString::fromStdString(simulator.device(healthyLine))))
                .toUtf8());
        return site.fileName();
    }

    void start() {
        program.start(QStringLiteral(HOST_PROGRAM),
                      {QStringLiteral("run"), writeSite(), QStringLiteral("--format"), QStringLiteral("json"),
                       QStringLiteral("--frames"), QStringLiteral("--log-dir"), logs});
        ASSERT_TRUE(program.waitForStarted(patienceMs));
    }

    // Each poll is one telegram. On either line.
    void awaitPolls(std::uint64_t count) {
        for (const int line : {fullLine, healthyLine}) {
            const std::uint64_t before = simulator.counts(line).telegrams;
            std::uint64_t polls = 0;
            while (polls < count) {
                ASSERT_TRUE(
                    Plant::eventually([&] { return simulator.counts(line).telegrams > before + polls; }));
                polls = simulator.counts(line).telegrams - before;
            }
        }
    }

    void end() {
        program.terminate();
        ASSERT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
    }

    // What the host has told at its end; 0 when nothing.
    std::uint64_t linesLost() const {
        const QString errors = QString::fromUtf8(contents(folder.filePath(QStringLiteral("errors"))));
        return QRegularExpression(QStringLiteral("(\\d+) log lines were lost"))
            .match(errors)
            .captured(1)
            .toULongLong();
    }

    const QTemporaryDir folder;
    const QString logs = folder.filePath(QStringLiteral("logs"));
    sim::Simulator simulator{{{sim::udpLine(fullLine, {station}),
                               sim::serialLine(healthyLine, {station}, sim::Framing::DataMode,
                                               folder.filePath(QStringLiteral("line")).toStdString())}}};
    QProcess program;
};

} // namespace

TEST_F(FullLogDisk, DoesNotHoldUpPollingAndTheLostLinesAreCounted) {
    const std::uint64_t polls = count(40U, 2'000U);
    start();
    awaitPolls(polls);
    end();
    // Of each poll a line for each telegram; results that repeat are collapsed.
    EXPECT_GE(linesLost(), 2 * polls);
    EXPECT_THAT(contents(logFile(healthyLine)).toStdString(), HasSubstr("Request result : Success"));
    tellFigures(std::to_string(simulator.counts(fullLine).telegrams) + " polls with a full disk, " +
                std::to_string(linesLost()) + " log lines lost and told; " +
                std::to_string(simulator.counts(healthyLine).telegrams) + " polls on the line beside it");
}

TEST_F(FullLogDisk, IsWrittenAgainWhenItHasRoom) {
    start();
    awaitPolls(count(20U, 500U));
    std::filesystem::remove(logFile(fullLine).toStdString());
    EXPECT_TRUE(Plant::eventually([&] { return contents(logFile(fullLine)).contains("<< read"); }));
    end();
    EXPECT_GT(linesLost(), 0U);
    tellFigures(std::to_string(simulator.counts(fullLine).telegrams) + " polls, " +
                std::to_string(linesLost()) + " log lines lost, then " +
                std::to_string(contents(logFile(fullLine)).count('\n')) + " lines written");
}
