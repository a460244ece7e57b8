#include "Broker.h"
#include "RunningHost.h"
#include "SmallSite.h"
#include "services/mqtt/SparkplugPayload.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string device = "north/waterworks.pump-house";
constexpr const char* stateTopic = "spBv1.0/STATE/scada";

std::string shown(const SparkplugMetric& metric) {
    std::string text = metric.name.empty() ? "#" + std::to_string(metric.alias.value_or(99)) : metric.name;
    text += '=';
    if (!metric.value)
        return text + "null";
    if (const bool* const flag = std::get_if<bool>(&*metric.value))
        return text + (*flag ? "on" : "off");
    if (const std::int64_t* const whole = std::get_if<std::int64_t>(&*metric.value))
        text += std::to_string(*whole);
    return text + (metric.isHistorical ? " kept" : "");
}

// An edge node "north" of the group "sbus" at a broker, and who listens to it.
class SparkplugNode : public testing::Test {
protected:
    SparkplugNode() {
        settings.broker = parseBrokerUrl(broker.url()).value();
        settings.layout = MqttLayout::Sparkplug;
        broker.start();
        listener = std::make_unique<Subscriber>(
            broker, QStringList{QStringLiteral("-t"), QStringLiteral("spBv1.0/sbus/#"), QStringLiteral("-F"),
                                QStringLiteral("%t %x")});
    }

    static Site northSite() {
        Site site = smallSite();
        site.name = "north";
        return site;
    }

    // "KIND NODE/DEVICE", the number, the metrics, for all that was heard.
    std::vector<std::string> heard() {
        std::vector<std::string> all;
        const QString space = QStringLiteral("spBv1.0/sbus/");
        for (const QString& line : listener->lines()) {
            const QStringList parts = line.split(QLatin1Char(' '));
            if (!line.startsWith(space) || parts.size() != 2 || line.contains(QStringLiteral("CMD/")))
                continue;
            const SparkplugPayload payload =
                decodeSparkplug(QByteArray::fromHex(parts[1].toLatin1()).toStdString()).value();
            const QString kind = parts[0].section(QLatin1Char('/'), 2, 2);
            std::string text =
                (kind + QLatin1Char(' ') + parts[0].section(QLatin1Char('/'), 3)).toStdString();
            text += payload.sequence ? " " + std::to_string(*payload.sequence) : "";
            for (const SparkplugMetric& metric : payload.metrics)
                text += " " + shown(metric);
            all.push_back(text);
        }
        return all;
    }
    bool hasHeard(const std::string& text) {
        return eventually([&] {
            const std::vector<std::string> all = heard();
            return std::any_of(all.begin(), all.end(),
                               [&](const std::string& one) { return one.find(text) != std::string::npos; });
        });
    }

    void send(const std::string& kind, const std::string& to, const SparkplugMetric& metric) {
        QFile file(host.folder.filePath(QStringLiteral("command")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QByteArray::fromStdString(encodeSparkplug({1, std::nullopt, {metric}})));
        file.close();
        ASSERT_TRUE(
            publish(broker, {QStringLiteral("-t"), QString::fromStdString("spBv1.0/sbus/" + kind + "/" + to),
                             QStringLiteral("-f"), file.fileName()}));
    }
    void hostSays(bool online, int since) {
        const QString json = QStringLiteral("{\"online\":%1,\"timestamp\":%2}")
                                 .arg(online ? QStringLiteral("true") : QStringLiteral("false"))
                                 .arg(since);
        ASSERT_TRUE(publish(broker, {QStringLiteral("-t"), QString::fromLatin1(stateTopic),
                                     QStringLiteral("-r"), QStringLiteral("-m"), json}));
    }

    Broker broker;
    RunningHost host{northSite()};
    MqttSettings settings;
    std::unique_ptr<Subscriber> listener;
};

SparkplugMetric named(const char* name, SparkplugValue value) {
    SparkplugMetric metric;
    metric.name = name;
    metric.type = SparkplugType::Boolean;
    metric.value = std::move(value);
    return metric;
}

} // namespace

TEST_F(SparkplugNode, IsBornSendsDataAndDies) {
    host.publish(2, 415);
    host.start(settings);
    ASSERT_TRUE(hasHeard("NBIRTH north 0 bdSeq=0 Node Control/Rebirth=off"));
    EXPECT_TRUE(hasHeard("DBIRTH " + device + " 1 RUN=null FLOW=null LEVEL=415"));
    ASSERT_TRUE(eventually([&] { return host.figure("kept") == 0; }));
    host.publish(2, 416);
    EXPECT_TRUE(hasHeard("#2=416"));
    host.isLineUp = false;
    EXPECT_TRUE(hasHeard("DDEATH " + device));
    host.stop();
    EXPECT_TRUE(hasHeard("NDEATH north bdSeq=0"));
}

TEST_F(SparkplugNode, CountsItsConnectionsOverRestarts) {
    host.start(settings);
    ASSERT_TRUE(hasHeard("NBIRTH north 0 bdSeq=0"));
    host.stop();
    host.start(settings);
    EXPECT_TRUE(hasHeard("NBIRTH north 0 bdSeq=1"));
}

TEST_F(SparkplugNode, IsBornAgainWhenAskedTo) {
    host.start(settings);
    ASSERT_TRUE(hasHeard("NBIRTH"));
    host.publish(2, 77);
    ASSERT_TRUE(hasHeard("=77"));
    send("NCMD", "north", named("Node Control/Rebirth", true));
    EXPECT_TRUE(hasHeard("DBIRTH " + device + " 1 RUN=null FLOW=null LEVEL=77"));
}

TEST_F(SparkplugNode, TakesCommandsWhereTheSiteAllowsIt) {
    settings.takesCommands = true;
    host.start(settings);
    ASSERT_TRUE(hasHeard("NBIRTH"));
    send("DCMD", device, named("RUN", true));
    ASSERT_TRUE(eventually([&] { return host.taker.taken().size() == 1; }));
    send("DCMD", device, named("LEVEL", std::int64_t{12}));
    ASSERT_TRUE(eventually([&] { return host.taker.taken().size() == 2; }));
    EXPECT_THAT(host.taker.taken(), ElementsAre("switch 1 on", "set 3 12"));
    host.taker.result = Halvex::DriverErrorResult::TimeOut;
    send("DCMD", device, named("RUN", false));
    EXPECT_TRUE(host.hasTold("the command to waterworks.pump-house/RUN by Sparkplug has failed: "));
}

TEST_F(SparkplugNode, TakesNoCommandsOtherwise) {
    host.start(settings);
    ASSERT_TRUE(hasHeard("NBIRTH"));
    send("DCMD", device, named("RUN", true));
    EXPECT_TRUE(host.hasTold("the site file has no commands = true"));
    EXPECT_TRUE(host.taker.taken().empty());
}

TEST_F(SparkplugNode, WaitsForItsPrimaryHostAndKeepsWhatChangesMeanwhile) {
    settings.primaryHost = "scada";
    hostSays(false, 1000);
    host.publish(2, 1);
    host.start(settings);
    ASSERT_TRUE(host.isConnected());
    host.publish(2, 2);
    EXPECT_THAT(heard(), Not(Contains(HasSubstr("NBIRTH"))));
    hostSays(true, 2000);
    ASSERT_TRUE(hasHeard("NBIRTH north 0 bdSeq=0"));
    EXPECT_TRUE(hasHeard("#2=2 kept"));
    host.publish(2, 3);
    EXPECT_TRUE(hasHeard("#2=3"));
    hostSays(false, 1000); // late: of the host's last session
    host.publish(2, 4);
    EXPECT_TRUE(hasHeard("#2=4"));
    hostSays(false, 2000);
    ASSERT_TRUE(hasHeard("NDEATH north bdSeq=0"));
    host.publish(2, 5);
    hostSays(true, 3000);
    EXPECT_TRUE(hasHeard("NBIRTH north 0 bdSeq=1"));
    EXPECT_TRUE(hasHeard("LEVEL=5"));
}

TEST_F(SparkplugNode, HasItsWillPublishedWhenTheConnectionBreaks) {
    host.start(settings);
    ASSERT_TRUE(hasHeard("NBIRTH"));
    // Another client of the same name takes the connection away.
    Subscriber other(broker, {QStringLiteral("-t"), QStringLiteral("x"), QStringLiteral("-i"),
                              QStringLiteral("sbus-host-north")});
    EXPECT_TRUE(hasHeard("NDEATH north bdSeq=0"));
    EXPECT_TRUE(hasHeard("NBIRTH north 0 bdSeq=1"));
}
