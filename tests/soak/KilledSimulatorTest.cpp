#include "Plant.h"
#include "Printers.h"
#include "ProcessFigures.h"
#include "RunningSite.h"
#include "Soak.h"
#include "TaggedValues.h"
#include "UdpController.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// The controllers are a program of its own, which is killed and started again.

using namespace soak;
using namespace std::chrono_literals;

namespace {

constexpr int patienceMs = 60'000;
constexpr int lineId = 1;
constexpr int station = 5;
constexpr unsigned registers = 30; // from R1000 on, tagged; the program begins with them anew each time
constexpr unsigned firstRegister = 1000;
constexpr unsigned setPoint = 100; // at R2000
constexpr unsigned setPointElement = 2000;

class KilledSimulator : public testing::Test {
protected:
    KilledSimulator() {
        QFile site(sitePath);
        EXPECT_TRUE(site.open(QIODevice::WriteOnly));
        site.write("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:" +
                   QByteArray::number(port) + "\"\n[[channel.rtu]]\nid = 1\nstation = 5\n");
        host::Rtu rtu;
        rtu.id = station;
        rtu.name = "pump-house";
        rtu.station = station;
        rtu.timeout = 200ms;
        rtu.scan = {1h, 50ms, 50ms};
        for (unsigned i = 0; i < registers; ++i)
            addPoint(rtu, i, firstRegister + i);
        addPoint(rtu, setPoint, setPointElement);
        for (unsigned i = 0; i < registers; ++i)
            judge.expect(lineId, station, i, i, ValueJudge::Kind::Standing);
        judge.expect(lineId, station, registers, setPoint, ValueJudge::Kind::Commanded);
        host::Channel channel;
        channel.id = lineId;
        channel.name = "waterworks";
        channel.primary = host::UdpEnd{"127.0.0.1", port};
        channel.rtus = {rtu};
        running.site().channels = {channel};
        running.listen(judge);
    }

    ~KilledSimulator() override { killSimulator(); }

    static void addPoint(host::Rtu& rtu, unsigned id, unsigned element) {
        host::Point point;
        point.id = id;
        point.name = "R" + std::to_string(element);
        point.kind = host::PointKind::Analog;
        point.address = {'R', element};
        rtu.points.push_back(point);
    }

    void startSimulator() {
        QStringList arguments{sitePath};
        for (unsigned i = 0; i < registers; ++i)
            arguments << QStringLiteral("--set")
                      << QStringLiteral("5/R%1=%2").arg(firstRegister + i).arg(taggedWord(i, 0));
        simulator.start(QStringLiteral(SIMULATOR_PROGRAM), arguments);
        ASSERT_TRUE(simulator.waitForStarted(patienceMs));
        QByteArray output;
        ASSERT_TRUE(Plant::eventually([&] {
            simulator.waitForReadyRead(1);
            output += simulator.readAllStandardOutput();
            return output.contains("ready");
        })) << simulator.readAllStandardError();
    }

    void killSimulator() {
        simulator.kill();
        simulator.waitForFinished(patienceMs);
    }

    bool isBad() const {
        for (host::PointIndex point = 0; point <= registers; ++point)
            if (running.values().state(point).quality == PointQuality::Good)
                return false;
        return true;
    }

    Halvex::DriverErrorResult command(std::uint16_t number) {
        judge.noteCommand(setPoint, number);
        const host::SetPoint action{setPoint, static_cast<double>(taggedWord(setPoint, number))};
        return running.carryOut({lineId, station, action});
    }

    bool reads(std::uint16_t number) const {
        const host::PointState state = running.values().state(registers); // the point behind them
        return state.quality == PointQuality::Good && state.value == taggedWord(setPoint, number);
    }

    const std::uint16_t port = unusedUdpPort();
    const QTemporaryDir folder;
    const QString sitePath = folder.filePath(QStringLiteral("site.toml"));
    QProcess simulator;
    ValueJudge judge;
    RunningSite running;
};

} // namespace

TEST_F(KilledSimulator, IsBackWithItsValuesEachTimeItIsStartedAgain) {
    startSimulator();
    running.start(PLUGIN_FILE);
    ASSERT_TRUE(Plant::eventually([this] { return judge.isAllFresh(); }));
    const int descriptors = openDescriptors();
    const int threads = runningThreads();
    std::uint64_t mostRequests = 0;
    const unsigned times = count(3U, 50U);
    for (unsigned i = 0; i < times; ++i) {
        const auto number = static_cast<std::uint16_t>(2 * i + 1);
        const auto next = static_cast<std::uint16_t>(number + 1);
        EXPECT_EQ(command(number), Halvex::DriverErrorResult::Success);
        EXPECT_TRUE(Plant::eventually([&] { return reads(number); }));
        killSimulator();
        EXPECT_NE(command(next), Halvex::DriverErrorResult::Success);
        ASSERT_TRUE(Plant::eventually([this] { return isBad(); }));
        startSimulator();
        judge.demandFresh();
        ASSERT_TRUE(Plant::eventually([this] { return judge.isAllFresh(); }));
        mostRequests = std::max(mostRequests, judge.mostRequestsUntilFresh());
    }
    // Three cycles of an analog poll each, the request on its way, and the integrity poll of the line that is
    // opened anew.
    EXPECT_LE(mostRequests, 5U);
    EXPECT_EQ(judge.wrongCount(), 0U) << judge.wrongValues();
    EXPECT_TRUE(
        Plant::eventually([&] { return openDescriptors() == descriptors && runningThreads() == threads; }));
    tellFigures("killed " + std::to_string(times) + " times, fresh after " + std::to_string(mostRequests) +
                " requests at most, " + std::to_string(judge.valueCount()) + " values, " +
                std::to_string(judge.wrongCount()) + " wrong, " + std::to_string(2 * times) +
                " commands with a result each");
}
