// What the program shows of the telegrams that it exchanges with simulated controllers: captures, as tshark
// reads them, and the trace of a running host.

#include "Dissection.h"
#include "EveryLine.h"
#include "StopProgram.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int patienceMs = 60'000;
constexpr int lineId = 1;
constexpr int station = 5;

sim::LineSite lineOf(LineType type, const QString& device) {
    if (type == LineType::Ethernet)
        return sim::udpLine(lineId, {station});
    const sim::Framing framing =
        type == LineType::SerialDataMode ? sim::Framing::DataMode : sim::Framing::BreakMode;
    return sim::serialLine(lineId, {station}, framing, device.toStdString());
}

// A controller with 1234 in R10, and a site file whose host polls that register ten times a second.
class TrafficProgram : public EveryLine {
protected:
    TrafficProgram() : simulator({{lineOf(GetParam(), file("line"))}}) {
        EXPECT_EQ(simulator.start(), "");
        simulator.memory(lineId, station).set(sim::Media::Registers, 10, 1234);
        QFile description(site);
        EXPECT_TRUE(description.open(QIODevice::WriteOnly));
        description.write("[[channel]]\nid = 1\nname = \"waterworks\"\n" + line() +
                          "[[channel.rtu]]\nid = 1\nname = \"pump-house\"\nstation = 5\ntransmit_type = \"" +
                          (GetParam() == LineType::SerialBreakMode ? "break" : "data") +
                          "\"\ntimeout = \"5s\"\nscan = { integrity = \"100ms\", status = \"1h\", analog = "
                          "\"1h\" }\n"
                          "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\naddress = "
                          "\"R10\"\n");
    }

    QByteArray line() const {
        if (GetParam() == LineType::Ethernet)
            return "type = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:" +
                   QByteArray::number(simulator.port(lineId)) + "\"\n";
        return "type = \"SBus-Serial\"\nprimary = \"serial:" +
               QByteArray::fromStdString(simulator.device(lineId)) + "?baud=19200\"\n";
    }

    QString link() const {
        return GetParam() == LineType::Ethernet
                   ? QStringLiteral("udp://127.0.0.1:%1").arg(simulator.port(lineId))
                   : QStringLiteral("serial:%1?baud=19200")
                         .arg(QString::fromStdString(simulator.device(lineId)));
    }
    static QString mode() {
        return GetParam() == LineType::SerialBreakMode ? QStringLiteral("break") : QStringLiteral("data");
    }

    void start(QProcess& program, const QStringList& arguments) const {
        program.start(QStringLiteral(HOST_PROGRAM), arguments);
        ASSERT_TRUE(program.waitForStarted(patienceMs));
    }

    // The exit status of a program that is asked to end, as Ctrl-C does.
    static int statusOf(QProcess& program) {
        stopProgram(program);
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return program.exitCode();
    }

    // What the program prints until `text` is among it.
    static std::string outputUpTo(QProcess& program, const std::string& text) {
        std::string output;
        Plant::eventually([&] {
            program.waitForReadyRead(50);
            output += program.readAllStandardOutput().toStdString();
            return output.find(text) != std::string::npos;
        });
        return output;
    }

    int answers() const {
        const auto stations = simulator.counts(lineId).stations;
        const auto counted = stations.find(station);
        return counted == stations.end() ? 0 : static_cast<int>(counted->second.answers);
    }

    QString file(const char* name) const { return folder.filePath(QLatin1String(name)); }

    const QTemporaryDir folder;
    const QString site = file("site.toml");
    sim::Simulator simulator;
};

ON_EVERY_LINE(TrafficProgram);

} // namespace

TEST_P(TrafficProgram, CapturesEveryTelegramOfARunForWireshark) {
    const QString capture = file("line.pcap");
    QProcess host;
    start(host, {QStringLiteral("run"), site, QStringLiteral("--no-control"), QStringLiteral("--capture"),
                 capture});
    ASSERT_TRUE(Plant::eventually([this] { return answers() >= 5; }));
    const int before = answers();
    EXPECT_EQ(statusOf(host), 0);

    const QStringList datagrams = dissectFile(capture);
    EXPECT_GE(datagrams.size(), 2 * (before - 1)) << "all but one that may not have ended";
    EXPECT_LE(datagrams.size(), 2 * answers());
    for (int i = 0; i + 1 < datagrams.size(); i += 2) {
        const QString number = QString::number(i / 2);
        EXPECT_EQ(datagrams[i], number + " station 5: Read register(s) (0x06), 1 from 10");
        EXPECT_EQ(datagrams[i + 1], number + " response: 00 00 04 D2");
    }
}

// The line is opened anew to read back.
TEST_P(TrafficProgram, CapturesWhatIsWrittenAndReadBackWithoutASiteFile) {
    const QString capture = file("line.pcap");
    QProcess host;
    start(host, {QStringLiteral("write"), link(), QStringLiteral("--station"), QString::number(station),
                 QStringLiteral("--mode"), mode(), QStringLiteral("R10=5"), QStringLiteral("--verify"),
                 QStringLiteral("--capture"), capture});
    ASSERT_TRUE(host.waitForFinished(patienceMs));
    EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().toStdString();

    const QStringList datagrams = dissectFile(capture);
    const int written =
        datagrams.indexOf(QRegularExpression(QStringLiteral(".*Write register.*1 from 10.*")));
    ASSERT_GE(written, 0) << datagrams.join(QLatin1Char('\n')).toStdString();
    EXPECT_THAT(datagrams.value(written + 1).toStdString(), HasSubstr("acknowledge: ACK"));
    EXPECT_THAT(datagrams.value(written + 2).toStdString(), HasSubstr("Read register(s) (0x06), 1 from 10"));
    EXPECT_THAT(datagrams.value(written + 3).toStdString(), HasSubstr("response: 00 00 00 05"));
}

TEST_P(TrafficProgram, ShowsARunningHostsExchangesInWords) {
    const QString socket = file("control");
    QProcess host;
    start(host, {QStringLiteral("run"), site, QStringLiteral("--control"), socket});
    ASSERT_TRUE(Plant::eventually([&] {
        QProcess status;
        start(status,
              {QStringLiteral("ctl"), site, QStringLiteral("--control"), socket, QStringLiteral("status")});
        return status.waitForFinished(patienceMs) && status.exitCode() == 0;
    }));
    QProcess trace;
    start(trace, {QStringLiteral("ctl"), site, QStringLiteral("--control"), socket, QStringLiteral("trace"),
                  QStringLiteral("waterworks")});
    const std::string shown = outputUpTo(trace, "R10: 1234 (");
    EXPECT_THAT(shown, HasSubstr("  waterworks, station 5  << read R10\n    "));
    EXPECT_THAT(shown, HasSubstr("  waterworks, station 5  >> R10: 1234 ("));
    EXPECT_THAT(shown, Not(HasSubstr("lost")));
    EXPECT_EQ(statusOf(trace), 0);
    EXPECT_EQ(statusOf(host), 0);
}
