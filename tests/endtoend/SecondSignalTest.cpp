#include "Plant.h"
#include "StopProgram.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <gtest/gtest.h>

// Whoever presses Ctrl-C twice wants the program gone at once.

namespace {

constexpr int patienceMs = 60'000;
constexpr int forcedExitStatus = 130;
constexpr char escape = '\x1b';
constexpr char enterScreen[] = "\x1b[?1049h";
constexpr char leaveScreen[] = "\x1b[?1049l";

// The site of one controller that hears everything and answers nothing, for longer than the test waits: so
// the end is held up by the request in progress.
QString writeSite(const QTemporaryDir& directory, unsigned port) {
    QFile site(directory.filePath(QStringLiteral("site.toml")));
    EXPECT_TRUE(site.open(QIODevice::WriteOnly));
    site.write(QStringLiteral("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\n"
                              "primary = \"udp://127.0.0.1:%1\"\n"
                              "[[channel.rtu]]\nid = 1\nname = \"tank\"\nstation = 1\ntimeout = \"10m\"\n"
                              "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\n"
                              "address = \"R1\"\n")
                   .arg(port)
                   .toLatin1());
    return site.fileName();
}

class SecondSignal : public testing::Test {
protected:
    QByteArray written() const {
        QFile file(output);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // What is on standard output after both signals, which come once `start` is there.
    QByteArray outputOf(const char* format, const char* start) {
        QUdpSocket controller;
        EXPECT_TRUE(controller.bind(QHostAddress(QHostAddress::LocalHost)))
            << controller.errorString().toStdString();
        QProcess program;
        program.setStandardOutputFile(output);
        program.start(QStringLiteral(HOST_PROGRAM),
                      {QStringLiteral("run"), writeSite(directory, controller.localPort()),
                       QStringLiteral("--format"), QString::fromLatin1(format)});
        EXPECT_TRUE(program.waitForStarted(patienceMs));
        EXPECT_TRUE(controller.waitForReadyRead(patienceMs));
        EXPECT_TRUE(Plant::eventually([&] { return written().startsWith(start); }));
        stopProgram(program, StopBy::Key);
        stopProgram(program, StopBy::System); // another one, so that the system does not make one of the two
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), forcedExitStatus);
        return written();
    }

    const QTemporaryDir directory;
    const QString output = directory.filePath(QStringLiteral("output"));
};

} // namespace

TEST_F(SecondSignal, LeavesNoEscapeSequencesWhereNoTableWasShown) {
    for (const char* const format : {"json", "csv", "lines"})
        EXPECT_FALSE(outputOf(format, "").contains(escape)) << format;
}

TEST_F(SecondSignal, LeavesTheScreenOfTheTable) {
    const QByteArray written = outputOf("table", enterScreen);
    EXPECT_GT(written.lastIndexOf(leaveScreen), written.lastIndexOf(enterScreen));
}
