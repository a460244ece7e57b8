#include "WatchedHost.h"

#include "Printers.h"
#include "ProcessFigures.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace soak {

using sim::Media;

namespace {

constexpr int patienceMs = 60'000;
constexpr int rtuId = 1;
constexpr unsigned registers = 50; // points 1 and on at R0 and on
constexpr unsigned flags = 20;     // points 101 and on at F0 and on
constexpr unsigned firstFlagPoint = 101;
constexpr unsigned firstFlagPlace = registers;

// Of an Ethernet telegram.
constexpr int commandByte = 10;
constexpr unsigned readFlags = 2;
constexpr unsigned readRegisters = 6;

QByteArray inMs(std::chrono::milliseconds time) {
    return "\"" + QByteArray::number(static_cast<qint64>(time.count())) + "ms\"";
}

PointQuality qualityNamed(const QString& name) {
    return name == QStringLiteral("good")  ? PointQuality::Good
           : name == QStringLiteral("bad") ? PointQuality::Bad
                                           : PointQuality::NeverRead;
}

} // namespace

WatchedHost::WatchedHost(const Periods& hostPeriods, const QProcessEnvironment& more)
    : periods(hostPeriods), simulator({{sim::udpLine(lineId, {station})}}),
      relay(1, [this](int, Direction direction, const QByteArray& telegram, Clock::time_point time) {
          if (direction == Direction::ToController)
              note(telegram, time);
      }) {
    EXPECT_EQ(simulator.start(), "");
    port = relay.addLine(simulator.port(lineId));
    for (unsigned i = 0; i < registers; ++i) {
        simulator.memory(lineId, station).set(Media::Registers, i, taggedWord(i, 0));
        valueJudge.expect(lineId, rtuId, 1 + i, i, ValueJudge::Kind::Moving);
    }
    for (unsigned i = 0; i < flags; ++i) {
        simulator.memory(lineId, station).set(Media::Flags, i, taggedBit(firstFlagPlace + i));
        valueJudge.expect(lineId, rtuId, firstFlagPoint + i, firstFlagPlace + i, ValueJudge::Kind::Bit);
    }
    writeSite();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
    QProcessEnvironment ofProgram = environment;
    ofProgram.insert(more);
    program.setProcessEnvironment(ofProgram);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    mover = std::thread([this] {
        while (moving) {
            const std::uint16_t move = valueJudge.nextMove();
            for (unsigned i = 0; i < registers; ++i)
                simulator.memory(lineId, station).set(Media::Registers, i, taggedWord(i, move));
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    });
}

WatchedHost::~WatchedHost() {
    program.kill();
    program.waitForFinished(patienceMs);
    moving = false;
    mover.join();
}

void WatchedHost::writeSite() const {
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[[channel]]\nid = 1\nname = \"waterworks\"\ntype = \"SBus-Ethernet\"\n"
               "primary = \"udp://127.0.0.1:" +
               QByteArray::number(port) +
               "\"\n[[channel.rtu]]\nid = 1\nname = \"pump-house\"\nstation = 5\ntimeout = \"1s\"\n"
               "scan = { integrity = \"1h\", status = " +
               inMs(periods.scan) + ", analog = " + inMs(periods.scan) +
               " }\n[[channel.rtu.point]]\nid = 1001\nname = \"P1_START\"\nkind = \"status\"\n"
               "address = \"O32\"\npulse_ms = " +
               QByteArray::number(static_cast<qint64>(periods.pulse.count())) + "\n");
    const auto addPoint = [&file](unsigned id, const char* kind, char media, unsigned element) {
        const QByteArray address = media + QByteArray::number(element);
        file.write("[[channel.rtu.point]]\nid = " + QByteArray::number(id) + "\nname = \"" + address +
                   "\"\nkind = \"" + kind + "\"\naddress = \"" + address + "\"\n");
    };
    for (unsigned i = 0; i < registers; ++i)
        addPoint(1 + i, "analog", 'R', i);
    for (unsigned i = 0; i < flags; ++i)
        addPoint(firstFlagPoint + i, "status", 'F', i);
}

void WatchedHost::note(const QByteArray& telegram, Clock::time_point time) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (telegram.size() > commandByte)
        requests.emplace_back(static_cast<quint8>(telegram[commandByte]), time);
}

void WatchedHost::start() {
    program.start(QStringLiteral(HOST_PROGRAM),
                  {QStringLiteral("run"), site, QStringLiteral("--format"), QStringLiteral("json")});
    ASSERT_TRUE(program.waitForStarted(patienceMs));
    awaitFresh(ValueJudge::Demanded::AllPoints);
    descriptors = openDescriptors(processId());
    threads = runningThreads(processId());
}

void WatchedHost::expectFresh() {
    awaitFresh(ValueJudge::Demanded::MovingPoints);
}

void WatchedHost::awaitFresh(ValueJudge::Demanded which) {
    valueJudge.demandFresh(which);
    EXPECT_TRUE(Plant::eventually([this] {
        readOutput();
        return valueJudge.isAllFresh();
    }));
}

void WatchedHost::stop() {
    const bool areAsMany = Plant::eventually([this] {
        return openDescriptors(processId()) == descriptors && runningThreads(processId()) == threads;
    });
    EXPECT_TRUE(areAsMany);
    program.terminate();
    EXPECT_TRUE(program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    readOutput();
    EXPECT_EQ(valueJudge.wrongCount(), 0U) << valueJudge.wrongValues();
}

std::unique_ptr<QProcess> WatchedHost::beginWrite(const char* value) const {
    auto command = std::make_unique<QProcess>();
    command->setProcessEnvironment(environment);
    command->start(QStringLiteral(HOST_PROGRAM),
                   {QStringLiteral("ctl"), site, QStringLiteral("write"), QString::fromLatin1(value)});
    EXPECT_TRUE(command->waitForStarted(patienceMs));
    return command;
}

bool WatchedHost::endWrite(QProcess& command) {
    return command.waitForFinished(patienceMs) && command.exitStatus() == QProcess::NormalExit &&
           command.exitCode() == 0;
}

std::vector<Clock::time_point> WatchedHost::polls(Scan scan, Clock::time_point since) const {
    const unsigned code = scan == Scan::Status ? readFlags : readRegisters;
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<Clock::time_point> times;
    for (const auto& [command, time] : requests)
        if (command == code && time >= since)
            times.push_back(time);
    return times;
}

std::vector<WatchedHost::Pulse> WatchedHost::pulses() const {
    std::vector<Pulse> all;
    std::vector<Clock::time_point> ones;
    for (const sim::WriteRecord& write : simulator.counts(lineId).writes) {
        if (write.address != pulseOutput)
            continue;
        if (write.value != 0) {
            ones.push_back(write.time);
        } else if (!ones.empty()) {
            const auto width = write.time - ones.front();
            all.push_back({std::chrono::duration_cast<std::chrono::milliseconds>(width), ones.size() == 2});
            ones.clear();
        }
    }
    return all;
}

void WatchedHost::readOutput() {
    program.waitForReadyRead(1);
    while (program.canReadLine())
        judgeLine(program.readLine());
}

// Of the program's output; what is no JSON is its summary.
void WatchedHost::judgeLine(const QByteArray& line) {
    const QJsonObject shown = QJsonDocument::fromJson(line).object();
    if (shown.isEmpty())
        return;
    PointUpdate update;
    update.number = static_cast<unsigned>(shown[QStringLiteral("id")].toInt());
    update.value = shown[QStringLiteral("value")].toDouble();
    update.quality = qualityNamed(shown[QStringLiteral("quality")].toString());
    valueJudge.publishPoints(lineId, rtuId, {update});
}

} // namespace soak
