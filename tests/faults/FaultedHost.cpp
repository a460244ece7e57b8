#include "FaultedHost.h"

#include "cli/ControlClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr int patienceMs = 20'000; // for the host to serve its operator; only a failure comes near
constexpr int tankLine = 1;
constexpr int hillLine = 2;
constexpr int tankStation = 5;
constexpr int hillStation = 6;
constexpr unsigned valve = 33;

bool awaitUnlessEnded(QProcess& host, const std::function<bool()>& condition) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (hasEnded(host) || elapsed.elapsed() > patienceMs)
            return false;
        QThread::msleep(5);
    }
    return true;
}

std::size_t pointsShown(const std::string& output) {
    std::set<QString> seen;
    for (const QByteArray& line : QByteArray::fromStdString(output).split('\n')) {
        const QJsonObject shown = QJsonDocument::fromJson(line).object();
        if (shown[QStringLiteral("quality")] == QStringLiteral("good"))
            seen.insert(shown[QStringLiteral("rtu")].toString() + QLatin1Char('/') +
                        shown[QStringLiteral("name")].toString());
    }
    return seen.size();
}

// The summary, which every life ends with, is none, and that a stop has ended the pulse is no news.
std::string messagesOf(const std::string& errors) {
    std::string messages;
    for (const QByteArray& line : QByteArray::fromStdString(errors).split('\n')) {
        const QByteArray first = line.left(line.indexOf(' '));
        if (first != "RTU" && first != "tank" && first != "hill" && first != "waterworks" &&
            first != "springs" && !line.endsWith(": its pulse is ended") && !line.isEmpty())
            messages += line.toStdString() + '\n';
    }
    return messages;
}

} // namespace

FaultedHost::FaultedHost()
    : simulator({{sim::udpLine(tankLine, {tankStation}),
                  sim::serialLine(hillLine, {hillStation}, sim::Framing::DataMode,
                                  deviceFolder.filePath(QStringLiteral("line")).toStdString())}}) {
    EXPECT_EQ(simulator.start(), "");
}

void FaultedHost::writeSite(const QString& path) const {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray scan = "scan = { integrity = \"1s\", status = \"200ms\", analog = \"200ms\" }\n";
    file.write("[[channel]]\nid = 1\nname = \"waterworks\"\ntype = \"SBus-Ethernet\"\n"
               "primary = \"udp://localhost:" +
               QByteArray::number(simulator.port(tankLine)) +
               "\"\n[[channel.rtu]]\nid = 1\nname = \"tank\"\nstation = 5\ntimeout = \"1s\"\n" + scan +
               "[[channel.rtu.point]]\nid = 1\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R1\"\n"
               "[[channel.rtu.point]]\nid = 2\nname = \"PUMP\"\nkind = \"status\"\naddress = \"O32\"\n"
               "[[channel.rtu.point]]\nid = 3\nname = \"VALVE\"\nkind = \"status\"\naddress = \"O33\"\n"
               "pulse_ms = 100\n"
               "[[channel]]\nid = 2\nname = \"springs\"\ntype = \"SBus-Serial\"\nprimary = \"serial:" +
               deviceFolder.filePath(QStringLiteral("line")).toUtf8() +
               "?baud=19200\"\n[[channel.rtu]]\nid = 1\nname = \"hill\"\nstation = 6\ntimeout = \"1s\"\n"
               "time_sync = \"1h\"\n" +
               scan +
               "[[channel.rtu.point]]\nid = 1\nname = \"FLOW\"\nkind = \"analog\"\naddress = \"R1\"\n");
}

Life FaultedHost::learn() {
    return live([](FaultyProgram& host, const FaultyProgram::During& during) { return host.learn(during); });
}

Life FaultedHost::live(const Place& place) {
    return live([&place](FaultyProgram& host, const FaultyProgram::During& during) {
        return host.runWithout(place, during);
    });
}

Life FaultedHost::live(const Running& running) {
    folder = std::make_unique<QTemporaryDir>();
    writeSite(pathOf("site.toml"));
    FaultyProgram host(QStringLiteral(HOST_PROGRAM),
                       {QStringLiteral("run"), pathOf("site.toml"), QStringLiteral("--format"),
                        QStringLiteral("json"), QStringLiteral("--log-dir"), pathOf("log"),
                        QStringLiteral("--capture"), pathOf("lines.pcap"), QStringLiteral("--control"),
                        pathOf("socket"), QStringLiteral("--state-dir"), folder->path()});
    Life life;
    life.run = running(host, [&](QProcess& program) {
        command(program, life);
        life.hasEndedByItself = hasEnded(program);
        program.terminate();
    });
    life.isPulseOver = simulator.memory(tankLine, tankStation).get(sim::Media::Outputs, valve) == 0;
    life.messages = messagesOf(life.run.errors);
    life.shown = pointsShown(life.run.output);
    for (const char* const name : {"log/channel-1.log", "log/channel-2.log", "lines.pcap"})
        if (QFileInfo(pathOf(name)).size() == 0)
            life.missing.emplace_back(name);
    return life;
}

// As an operator would: waits for the values, gives commands, and looks whether all is well.
void FaultedHost::command(QProcess& host, Life& life) {
    if (!awaitUnlessEnded(host, [this] { return QFileInfo::exists(pathOf("socket")); }) || !awaitFresh(host))
        return;
    const std::uint32_t value = ++lastValue;
    const std::string reply = ask(R"({"id":1,"do":"write","values":[{"point":"tank/LEVEL","value":)" +
                                      std::to_string(value) + "}]}",
                                  host);
    life.hasReply = !reply.empty();
    life.isSuccess = reply.find(R"("result":"success")") != std::string::npos;
    life.isWritten = simulator.memory(tankLine, tankStation).get(sim::Media::Registers, 1) == value;
    life.hasPulseReply =
        !ask(R"({"id":2,"do":"write","values":[{"point":"tank/VALVE","value":1}]})", host).empty();
    life.isFresh = awaitFresh(host);
}

bool FaultedHost::awaitFresh(QProcess& host) const {
    return awaitUnlessEnded(host, [&] {
        const std::string status = ask(R"({"do":"status"})", host);
        const QJsonObject reply = QJsonDocument::fromJson(QByteArray::fromStdString(status)).object();
        int good = 0;
        for (const auto& channel : reply[QStringLiteral("channels")].toArray())
            for (const auto& rtu : channel.toObject()[QStringLiteral("rtus")].toArray())
                good += rtu.toObject()[QStringLiteral("good_points")].toInt();
        return good == static_cast<int>(points);
    });
}

// The reply; empty when the connection has ended before.
std::string FaultedHost::ask(const std::string& request, const QProcess& host) const {
    host::ControlClient client;
    QElapsedTimer elapsed;
    elapsed.start();
    if (!client.connectTo({pathOf("socket").toStdString()}) ||
        !client.send(QByteArray::fromStdString(request)))
        return {};
    const auto reply = client.nextLine(
        [&] { return elapsed.elapsed() > patienceMs || host.state() == QProcess::NotRunning; });
    return reply ? reply->toStdString() : "";
}
