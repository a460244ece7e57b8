// The programs with many lines, and how many files and sockets the system lets them have.

#include "Plant.h"
#include "ProcessFigures.h"
#include "plan/DescriptorNeed.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

using testing::HasSubstr;

namespace {

constexpr int patienceMs = 60'000;

// Begins with limits of its own.
class LimitedProcess : public QProcess {
public:
    LimitedProcess(rlim_t soft, rlim_t hard) : limits{soft, hard} {}

protected:
    void setupChildProcess() override { setrlimit(RLIMIT_NOFILE, &limits); }

private:
    const rlimit limits;
};

class DescriptorLimit : public testing::Test {
protected:
    // Each line's end is what `ends` begins with, and a number.
    QString siteOf(int lines, const QString& ends) const {
        QFile site(folder.filePath(QStringLiteral("site%1.toml").arg(lines)));
        EXPECT_TRUE(site.open(QIODevice::WriteOnly));
        const bool isSerial = ends.startsWith(QStringLiteral("serial:"));
        for (int line = 1; line <= lines; ++line)
            site.write(QStringLiteral("[[channel]]\nid = %1\ntype = \"%2\"\nprimary = \"%3%4\"\n"
                                      "[[channel.rtu]]\nid = 1\nname = \"tank%1\"\nstation = 1\n"
                                      "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\n"
                                      "address = \"R1\"\n")
                           .arg(QString::number(line),
                                isSerial ? QStringLiteral("SBus-Serial") : QStringLiteral("SBus-Ethernet"),
                                ends, QString::number(firstPort + line))
                           .toLatin1());
        return site.fileName();
    }
    // Nobody listens at the other ends.
    QStringList run(int lines, const QStringList& more) const {
        return QStringList{QStringLiteral("run"), siteOf(lines, QStringLiteral("udp://127.0.0.1:")),
                           QStringLiteral("--format"), QStringLiteral("lines")} +
               more;
    }
    static void end(QProcess& program) {
        program.terminate();
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    }

    static constexpr int firstPort = 61'000;
    const QTemporaryDir folder;
};

std::size_t neededWith(int lines, const host::BesideLines& beside) {
    host::Site site;
    host::Channel channel;
    channel.primary = host::UdpEnd{"127.0.0.1", 5050};
    site.channels.assign(static_cast<std::size_t>(lines), channel);
    return host::descriptorsNeeded(site, beside);
}

} // namespace

TEST_F(DescriptorLimit, IsRaisedByTheHostBeforeItsLinesNeedIt) {
    constexpr int lines = 60;
    LimitedProcess host(64, 1'000);
    host.start(QStringLiteral(HOST_PROGRAM), run(lines, {QStringLiteral("--no-control")}));
    ASSERT_TRUE(host.waitForStarted(patienceMs));
    EXPECT_TRUE(Plant::eventually([&] { return openDescriptors(host.processId()) > 4 * lines; }));
    end(host);
}

TEST_F(DescriptorLimit, BelowWhatTheSiteNeedsIsToldWithBothNumbers) {
    LimitedProcess host(64, 128);
    host.start(QStringLiteral(HOST_PROGRAM), run(60, {QStringLiteral("--no-control")}));
    ASSERT_TRUE(host.waitForFinished(patienceMs));
    EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(host.exitCode(), 2);
    EXPECT_THAT(host.readAllStandardError().toStdString(),
                HasSubstr("needs up to " + std::to_string(neededWith(60, {})) +
                          " files and sockets at once, and this process may have 128; "));
}

TEST_F(DescriptorLimit, IsJudgedByWhatAHostReallyOpens) {
    for (const int lines : {1, 20}) {
        QProcess host;
        host.start(QStringLiteral(HOST_PROGRAM),
                   run(lines, {QStringLiteral("--log-dir"), folder.filePath(QStringLiteral("log")),
                               QStringLiteral("--capture"), folder.filePath(QStringLiteral("lines.pcap")),
                               QStringLiteral("--control"), folder.filePath(QStringLiteral("socket"))}));
        ASSERT_TRUE(host.waitForStarted(patienceMs));
        // To spare are the program's own, a second capture file and the clients that are not there.
        const int needed = static_cast<int>(neededWith(lines, {true, true, true}));
        const int spare = 24 + static_cast<int>(host::leastControlClients);
        EXPECT_TRUE(Plant::eventually([&] { return openDescriptors(host.processId()) >= needed - spare; }))
            << openDescriptors(host.processId()) << " of " << needed;
        EXPECT_LE(openDescriptors(host.processId()), needed - static_cast<int>(host::leastControlClients));
        end(host);
    }
}

TEST_F(DescriptorLimit, IsRaisedByTheSimulatorToo) {
    LimitedProcess simulator(64, 1'000);
    simulator.start(QStringLiteral(SIMULATOR_PROGRAM),
                    {siteOf(100, QStringLiteral("serial:") + folder.filePath(QStringLiteral("line")))});
    ASSERT_TRUE(simulator.waitForStarted(patienceMs));
    QByteArray output;
    EXPECT_TRUE(Plant::eventually([&] {
        simulator.waitForReadyRead(20);
        output += simulator.readAllStandardOutput();
        return output.contains("ready\n");
    })) << simulator.readAllStandardError().toStdString();
    end(simulator);
}
