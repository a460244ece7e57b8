#include "Eventually.h"
#include "RawClient.h"

#include <Simulator.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <set>

using testing::HasSubstr;

namespace {

// The program on three lines, with a client of its metrics: on "waterworks" a simulated controller, on
// "reservoirs" one that takes as long for an answer as the period of a poll, on "wells" none.
class MetricsProgram : public testing::Test {
protected:
    MetricsProgram() : simulator({{sim::udpLine(1, {5}), sim::udpLine(2, {6}), sim::udpLine(3, {})}}) {
        sim::Faults slow;
        slow.late = 1;
        slow.lateBy = std::chrono::milliseconds(100);
        simulator.setFaults(2, slow);
        EXPECT_EQ(simulator.start(), "");
        simulator.memory(1, 5).set(sim::Media::Registers, 10, 415);
        QFile file(site);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("site = \"north\"\n" + line(1, "waterworks", 5) + line(2, "reservoirs", 6) +
                   line(3, "wells", 7) + "[http]\nlisten = \"127.0.0.1:0\"\npoints = true\n");
        file.close();
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(QStringLiteral(HOST_PROGRAM), {QStringLiteral("run"), site, QStringLiteral("--no-control"),
                                                  QStringLiteral("--format"), QStringLiteral("json")});
        port = portBehind(host, QStringLiteral("metrics at http://127\\.0\\.0\\.1:(\\d+)/metrics"));
    }

    ~MetricsProgram() override {
        for (QProcess* const program : {&prometheus, &host}) {
            program->terminate();
            if (program->state() != QProcess::NotRunning && !program->waitForFinished(patienceMs))
                program->kill();
        }
    }

    // A line to the simulator with one controller.
    QByteArray line(int id, const char* name, unsigned station) const {
        const QByteArray number = QByteArray::number(id);
        return "[[channel]]\nid = " + number + "\nname = \"" + name +
               "\"\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:" +
               QByteArray::number(simulator.port(id)) + "\"\n[[channel.rtu]]\nid = 1\nname = \"rtu-" +
               number + "\"\nstation = " + QByteArray::number(station) +
               "\ntimeout = \"300ms\"\nscan = { status = \"100ms\", analog = \"100ms\" }\n"
               "[[channel.rtu.point]]\nid = 1\nname = \"RUN\"\nkind = \"status\"\naddress = \"F1\"\n"
               "[[channel.rtu.point]]\nid = 2\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R10\"\n"
               "scale = 0.01\nunit = \"m\"\n";
    }

    // What a program says of where it listens.
    static std::uint16_t portBehind(QProcess& program, const QString& pattern) {
        const QRegularExpression expression(pattern);
        QString said;
        QRegularExpressionMatch found;
        EXPECT_TRUE(eventually([&] {
            program.waitForReadyRead(100);
            said += QString::fromUtf8(program.readAll());
            found = expression.match(said);
            return found.hasMatch() || program.state() == QProcess::NotRunning;
        })) << said.toStdString();
        EXPECT_TRUE(found.hasMatch()) << said.toStdString();
        return static_cast<std::uint16_t>(found.captured(1).toUInt());
    }

    static std::string ask(std::uint16_t server, const std::string& path, const std::string& headers = {}) {
        RawClient client(server);
        client.send(get(path, headers + "Connection: close\r\n"));
        return bodyOf(client.readToEnd());
    }

    std::string metrics() const { return ask(port, "/metrics"); }

    // Of a sample in the metrics, or -1.
    double valueOf(const std::string& sample) const {
        const std::string text = metrics();
        const std::size_t at = text.find('\n' + sample + ' ');
        return at == std::string::npos ? -1 : std::stod(text.substr(at + sample.size() + 2));
    }

    bool hasReadAll() const {
        return valueOf(
                   "sbus_rtu_points{site=\"north\",channel=\"waterworks\",rtu=\"rtu-1\",quality=\"good\"}") ==
               2;
    }

    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    sim::Simulator simulator;
    QProcess host;
    QProcess prometheus;
    std::uint16_t port = 0;
};

const std::string live = "{site=\"north\",channel=\"waterworks\",rtu=\"rtu-1\"}";
const std::string slow = "{site=\"north\",channel=\"reservoirs\",rtu=\"rtu-2\"}";
const std::string silent = "{site=\"north\",channel=\"wells\",rtu=\"rtu-3\"}";

// The names of metrics in a text.
std::set<std::string> namesIn(const QString& text) {
    std::set<std::string> names;
    const QRegularExpression name(QStringLiteral("\\bsbus_\\w+"));
    for (auto found = name.globalMatch(text); found.hasNext();)
        names.insert(found.next().captured().toStdString());
    return names;
}

} // namespace

TEST_F(MetricsProgram, TellsHowItsLinesStand) {
    ASSERT_TRUE(eventually([this] { return hasReadAll(); })) << metrics();
    EXPECT_EQ(valueOf("sbus_point_value{site=\"north\",channel=\"waterworks\",rtu=\"rtu-1\",point=\"LEVEL\","
                      "unit=\"m\"}"),
              4.15);
    EXPECT_GT(valueOf("sbus_rtu_answers_total" + live), 0);
    EXPECT_GT(valueOf("sbus_rtu_round_trip_seconds_count" + live), 1);
    EXPECT_GE(valueOf("sbus_rtu_oldest_value_age_seconds" + live), 0);
    EXPECT_EQ(valueOf("sbus_rtu_timeouts_total" + live), 0);
    EXPECT_TRUE(eventually([this] { return valueOf("sbus_rtu_timeouts_total" + silent) > 0; })) << metrics();
    EXPECT_EQ(valueOf("sbus_rtu_round_trip_seconds_count" + silent), 0);
    EXPECT_TRUE(eventually([this] { return valueOf("sbus_rtu_poll_overruns_total" + slow) > 0; }))
        << metrics();
    EXPECT_TRUE(eventually([this] { return ask(port, "/readyz") == "ready\n"; })) << "each poll has ended";
}

TEST_F(MetricsProgram, IsWithoutAFindingOfPromtool) {
    ASSERT_TRUE(eventually([this] { return hasReadAll(); })) << metrics();
    QProcess promtool;
    promtool.setProcessChannelMode(QProcess::MergedChannels);
    promtool.start(QStringLiteral("promtool"), {QStringLiteral("check"), QStringLiteral("metrics")});
    ASSERT_TRUE(promtool.waitForStarted(patienceMs));
    promtool.write(QByteArray::fromStdString(metrics()));
    promtool.closeWriteChannel();
    ASSERT_TRUE(promtool.waitForFinished(patienceMs));
    EXPECT_EQ(promtool.readAll().toStdString(), "");
    EXPECT_EQ(promtool.exitCode(), 0);
}

// Prometheus asks for OpenMetrics, and reads nothing of a page with a mistake.
TEST_F(MetricsProgram, IsScrapedByPrometheus) {
    QFile configuration(folder.filePath(QStringLiteral("prometheus.yml")));
    ASSERT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write("global: { scrape_interval: 1s }\nscrape_configs:\n- job_name: sbus\n"
                        "  static_configs: [{ targets: [\"127.0.0.1:" +
                        QByteArray::number(port) + "\"] }]\n");
    configuration.close();
    prometheus.setProcessChannelMode(QProcess::MergedChannels);
    prometheus.start(QStringLiteral("prometheus"),
                     {QStringLiteral("--config.file=") + configuration.fileName(),
                      QStringLiteral("--storage.tsdb.path=") + folder.filePath(QStringLiteral("data")),
                      QStringLiteral("--web.listen-address=127.0.0.1:0")});
    const std::uint16_t own =
        portBehind(prometheus, QStringLiteral("msg=\"Listening on\" address=127\\.0\\.0\\.1:(\\d+)"));
    const auto query = [own](const std::string& expression) {
        return ask(own, "/api/v1/query?query=" + expression);
    };
    EXPECT_TRUE(eventually([&] { return query("up").find(",\"1\"]") != std::string::npos; })) << query("up");
    const std::string level = "sbus_point_value%7Bpoint=%22LEVEL%22,unit=%22m%22%7D";
    EXPECT_TRUE(eventually([&] { return query(level).find(",\"4.15\"]") != std::string::npos; }))
        << query(level);
    EXPECT_THAT(query("sbus_rtu_requests_total"), HasSubstr("\"rtu\":\"rtu-1\""));
    EXPECT_THAT(query("histogram_quantile(0.5,sbus_rtu_round_trip_seconds_bucket)"), HasSubstr("\"rtu-1\""));
}

TEST_F(MetricsProgram, HasAllMetricsThatTheDashboardShows) {
    ASSERT_TRUE(eventually([this] { return hasReadAll(); })) << metrics();
    const std::set<std::string> there = namesIn(QString::fromStdString(metrics()));
    QFile file(QStringLiteral(DASHBOARD));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QJsonParseError error{};
    const QJsonObject dashboard = QJsonDocument::fromJson(file.readAll(), &error).object();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    int asked = 0;
    for (const QJsonValue& panel : dashboard[QLatin1String("panels")].toArray())
        for (const QJsonValue& target : panel[QLatin1String("targets")].toArray())
            for (const std::string& name : namesIn(target[QLatin1String("expr")].toString())) {
                EXPECT_EQ(there.count(name), 1U) << name;
                ++asked;
            }
    EXPECT_GT(asked, 10);
    for (const QJsonValue& variable : dashboard[QLatin1String("templating")][QLatin1String("list")].toArray())
        for (const std::string& name : namesIn(variable[QLatin1String("query")].toString()))
            EXPECT_EQ(there.count(name), 1U) << name;
}
