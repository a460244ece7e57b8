#include "Broker.h"
#include "RunningHost.h"
#include "SmallSite.h"

#include <QFile>
#include <QTcpServer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QString levelTopic = QStringLiteral("sbus/north/waterworks/pump-house/LEVEL");

Site northSite() {
    Site site = smallSite();
    site.name = "north";
    return site;
}

MqttSettings settingsFor(const Broker& broker) {
    MqttSettings settings;
    settings.broker = parseBrokerUrl(broker.url()).value();
    return settings;
}

// Text between the test and mosquitto_passwd or openssl. Whether it went well.
bool runs(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool isGood = process.waitForFinished(60'000) && process.exitCode() == 0;
    EXPECT_TRUE(isGood) << process.readAll().toStdString();
    return isGood;
}

void writeSecret(const QString& path, const QByteArray& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(text);
}

class WithBroker : public testing::TestWithParam<MqttVersion> {
protected:
    WithBroker() { settings.version = GetParam(); }

    Broker broker;
    RunningHost host{northSite()};
    MqttSettings settings = settingsFor(broker);
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Versions, WithBroker, testing::Values(MqttVersion::V5, MqttVersion::V311),
                         [](const auto& one) {
                             return one.param == MqttVersion::V5 ? std::string("Mqtt5")
                                                                 : std::string("Mqtt311");
                         });

TEST_P(WithBroker, HearsValuesAndStatesAndKeepsThem) {
    broker.start();
    host.publish(2, 415);
    host.start(settings);
    ASSERT_TRUE(host.isConnected());
    Subscriber live(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    EXPECT_TRUE(live.hasHeard(levelTopic + QStringLiteral(" {\"value\":415,\"quality\":\"good\",\"time\":")));
    EXPECT_TRUE(live.hasHeard(QStringLiteral("FLOW {\"value\":null,\"quality\":\"never read\"}")));
    EXPECT_TRUE(live.hasHeard(QStringLiteral("sbus/north/$state {\"state\":\"online\"")));
    EXPECT_TRUE(live.hasHeard(QStringLiteral("sbus/north/waterworks/$state {\"state\":\"online\"")));
    EXPECT_TRUE(live.hasHeard(QStringLiteral("pump-house/$state {\"state\":\"online\"")));
    host.publish(2, 0, PointQuality::Bad);
    EXPECT_TRUE(live.hasHeard(levelTopic + QStringLiteral(" {\"value\":null,\"quality\":\"bad\"")));
    host.isLineUp = false;
    EXPECT_TRUE(live.hasHeard(QStringLiteral("sbus/north/waterworks/$state {\"state\":\"offline\"")));
    EXPECT_TRUE(live.hasHeard(QStringLiteral("pump-house/$state {\"state\":\"offline\"")));
    host.stop();
    EXPECT_TRUE(live.hasHeard(QStringLiteral("sbus/north/$state {\"state\":\"offline\"")));
    EXPECT_TRUE(live.hasHeard(QStringLiteral("pump-house/$state {\"state\":\"unknown\"")));
    Subscriber late(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    EXPECT_TRUE(late.hasHeard(levelTopic + QStringLiteral(" {\"value\":null,\"quality\":\"bad\"")));
}

TEST_P(WithBroker, HearsTheChangesOfAnRtuInOneMessage) {
    settings.layout = MqttLayout::Batch;
    broker.start();
    Subscriber subscriber(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    host.publish(1, 2.5);
    host.publish(2, 415);
    host.start(settings);
    EXPECT_TRUE(subscriber.hasHeard(
        QStringLiteral("sbus/north/waterworks/pump-house "
                       "{\"values\":[{\"point\":\"FLOW\",\"value\":2.5,\"quality\":\"good\"")));
    EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("{\"point\":\"LEVEL\",\"value\":415,")));
}

TEST_P(WithBroker, CommandsAPointAndHearsTheResult) {
    settings.takesCommands = true;
    broker.start();
    Subscriber subscriber(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    host.start(settings);
    ASSERT_TRUE(host.isConnected());
    const QString set = levelTopic + QStringLiteral("/set");
    const auto send = [&](const QString& payload) {
        return publish(broker, {QStringLiteral("-t"), set, QStringLiteral("-q"), QStringLiteral("1"),
                                QStringLiteral("-m"), payload});
    };
    ASSERT_TRUE(eventually([&] { return send(QStringLiteral("12")) && !host.taker.taken().empty(); }));
    EXPECT_TRUE(subscriber.hasHeard(set + QStringLiteral("/result {\"ok\":true,\"result\":\"success\"}")));
    ASSERT_TRUE(send(QStringLiteral("{\"id\":\"a\",\"value\":13}")));
    EXPECT_TRUE(subscriber.hasHeard(set + QStringLiteral("/result {\"id\":\"a\",\"ok\":true")));
    const std::size_t before = host.taker.taken().size();
    ASSERT_TRUE(send(QStringLiteral("{\"id\":\"a\",\"value\":13}")));
    EXPECT_TRUE(eventually([&] { return host.figure("repeated commands") == 1; }));
    EXPECT_EQ(host.taker.taken().size(), before) << "it was sent twice";
    ASSERT_TRUE(send(QStringLiteral("{\"id\":\"b\",\"value\":\"much\"}")));
    EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("{\"id\":\"b\",\"ok\":false,\"result\":\"refused\"")));
}

TEST_P(WithBroker, DoesNotCarryOutARetainedCommand) {
    settings.takesCommands = true;
    broker.start();
    Subscriber subscriber(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    ASSERT_TRUE(publish(broker, {QStringLiteral("-t"), levelTopic + QStringLiteral("/set"),
                                 QStringLiteral("-r"), QStringLiteral("-m"), QStringLiteral("12")}));
    host.start(settings);
    ASSERT_TRUE(host.isConnected());
    // Behind it another one, which is carried out.
    const QString run = QStringLiteral("sbus/north/waterworks/pump-house/RUN/set");
    ASSERT_TRUE(eventually([&] {
        return publish(broker, {QStringLiteral("-t"), run, QStringLiteral("-m"), QStringLiteral("on")}) &&
               !host.taker.taken().empty();
    }));
    EXPECT_EQ(host.taker.taken().front(), "switch 1 on");
}

TEST_P(WithBroker, TakesNoCommandsWithoutLeave) {
    broker.start();
    host.start(settings);
    ASSERT_TRUE(host.isConnected());
    Subscriber subscriber(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    ASSERT_TRUE(publish(broker, {QStringLiteral("-t"), levelTopic + QStringLiteral("/set"),
                                 QStringLiteral("-m"), QStringLiteral("12")}));
    host.publish(1, 77);
    EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("FLOW {\"value\":77")));
    EXPECT_THAT(host.taker.taken(), IsEmpty());
}

TEST_P(WithBroker, IsWaitedForWhenItIsNotThereAtTheStart) {
    host.publish(2, 1);
    host.start(settings);
    EXPECT_TRUE(host.hasTold("look whether the broker runs"));
    host.publish(2, 2);
    EXPECT_TRUE(eventually([&] { return host.figure("kept") >= 2; }));
    broker.start();
    ASSERT_TRUE(host.isConnected());
    EXPECT_TRUE(host.hasTold("is connected"));
    EXPECT_TRUE(eventually([&] { return host.figure("kept") == 0; }));
}

TEST(Mqtt5, AnswersWhereTheSenderWantsIt) {
    Broker broker;
    broker.start();
    RunningHost host{northSite()};
    MqttSettings settings = settingsFor(broker);
    settings.takesCommands = true;
    host.start(settings);
    ASSERT_TRUE(host.isConnected());
    QProcess request;
    ASSERT_TRUE(eventually([&] {
        request.start(QStringLiteral("mosquitto_rr"),
                      {QStringLiteral("-p"), QString::number(broker.port()), QStringLiteral("-V"),
                       QStringLiteral("5"), QStringLiteral("-t"), levelTopic + QStringLiteral("/set"),
                       QStringLiteral("-e"), QStringLiteral("scada/answer"), QStringLiteral("-D"),
                       QStringLiteral("publish"), QStringLiteral("correlation-data"), QStringLiteral("c1"),
                       QStringLiteral("-m"), QStringLiteral("12"), QStringLiteral("-W"), QStringLiteral("2"),
                       QStringLiteral("-F"), QStringLiteral("%D %p")});
        return request.waitForFinished(30'000) && request.exitCode() == 0;
    }));
    EXPECT_EQ(request.readAllStandardOutput(), "c1 {\"ok\":true,\"result\":\"success\"}\n");
}

TEST(MqttBroker, ThatWantsAPasswordGetsItAndAWrongOneIsToldInWords) {
    Broker broker("allow_anonymous false\npassword_file FOLDER/passwords\n");
    const QString passwords = broker.path(QStringLiteral("passwords"));
    writeSecret(passwords, {});
    ASSERT_TRUE(runs(QStringLiteral("mosquitto_passwd"),
                     {QStringLiteral("-b"), passwords, QStringLiteral("gateway"), QStringLiteral("sesame")}));
    broker.start();
    RunningHost host{northSite()};
    MqttSettings settings = settingsFor(broker);
    const QString secret = broker.path(QStringLiteral("secret"));
    settings.user = "gateway";
    settings.password = SecretSource{secret.toStdString(), {}, {}};
    writeSecret(secret, "wrong\n");
    host.start(settings);
    EXPECT_TRUE(host.hasTold("look at user")) << host.told;
    EXPECT_EQ(host.figure("connected"), 0U);
    writeSecret(secret, "sesame\n");
    EXPECT_TRUE(host.isConnected());
}

TEST(MqttBroker, IsReachedOverTlsWithACertificateOfTheHost) {
    Broker broker({}, "cafile FOLDER/ca.crt\ncertfile FOLDER/server.crt\nkeyfile FOLDER/server.key\n"
                      "require_certificate true\n");
    const auto file = [&](const char* name) { return broker.path(QString::fromLatin1(name)); };
    const auto openssl = [](const QString& line) {
        return runs(QStringLiteral("openssl"), line.split(QLatin1Char(' ')));
    };
    ASSERT_TRUE(openssl(QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=plant -keyout %1 "
                                       "-out %2")
                            .arg(file("ca.key"), file("ca.crt"))));
    writeSecret(file("names"), "subjectAltName=IP:127.0.0.1\n");
    for (const QString& who : {QStringLiteral("server"), QStringLiteral("client")}) {
        const QString base = broker.path(who);
        ASSERT_TRUE(
            openssl(QStringLiteral("req -newkey rsa:2048 -nodes -subj /CN=%1 -keyout %2.key -out %2.csr")
                        .arg(who, base)));
        ASSERT_TRUE(openssl(QStringLiteral("x509 -req -days 2 -in %1.csr -CA %2 -CAkey %3 -CAcreateserial "
                                           "-extfile %4 -out %1.crt")
                                .arg(base, file("ca.crt"), file("ca.key"), file("names"))));
        QFile::setPermissions(base + QStringLiteral(".key"), QFile::ReadOwner | QFile::WriteOwner);
    }
    broker.start();
    MqttSettings settings = settingsFor(broker);
    settings.broker.isSecure = true;
    settings.caFile = file("ca.crt").toStdString();
    {
        RunningHost host{northSite()};
        settings.caFile = file("client.crt").toStdString();
        host.start(settings);
        EXPECT_TRUE(host.hasTold("TLS fails")) << "another authority: " << host.told;
        settings.caFile = file("ca.crt").toStdString();
    }
    {
        RunningHost host{northSite()};
        host.start(settings);
        EXPECT_TRUE(host.hasTold("MQTT: mqtts://")) << "without a certificate";
        EXPECT_EQ(host.figure("connected"), 0U);
    }
    settings.certificate = file("client.crt").toStdString();
    settings.keyFile = file("client.key").toStdString();
    {
        RunningHost host{northSite()};
        MqttSettings otherName = settings;
        otherName.broker.host = "localhost";
        host.start(otherName);
        EXPECT_TRUE(host.hasTold("TLS fails")) << "the certificate is not for this name: " << host.told;
        EXPECT_EQ(host.figure("connected"), 0U);
    }
    {
        RunningHost host{northSite()};
        QFile::setPermissions(file("client.key"), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
        host.start(settings);
        EXPECT_TRUE(host.hasTold("can be read or changed by other users"));
        QFile::setPermissions(file("client.key"), QFile::ReadOwner | QFile::WriteOwner);
        EXPECT_TRUE(host.isConnected()) << host.told;
    }
}

TEST(MqttBroker, ThatAcceptsAndNeverAnswersHoldsUpNothing) {
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    RunningHost host{northSite()};
    MqttSettings settings;
    settings.broker.host = "127.0.0.1";
    settings.broker.port = silent.serverPort();
    MqttService::Settings service = RunningHost::quick();
    service.answerLimit = std::chrono::milliseconds(300);
    host.start(settings, service);
    host.publish(2, 1);
    EXPECT_TRUE(host.hasTold("the broker does not answer"));
    QElapsedTimer elapsed;
    elapsed.start();
    host.stop();
    EXPECT_LT(elapsed.elapsed(), 1'000);
}

TEST(MqttBroker, HasWhatAHostLeftBehindThatEndedWhileItWasAway) {
    Broker broker;
    MqttSettings settings = settingsFor(broker);
    RunningHost host{northSite()};
    host.start(settings);
    host.publish(2, 1);
    host.publish(2, 2);
    host.stop();
    broker.start();
    Subscriber subscriber(broker, {QStringLiteral("-t"), QStringLiteral("sbus/#")});
    host.start(settings);
    EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("LEVEL {\"value\":1,")));
    EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("LEVEL {\"value\":2,")));
}

// The program, on a line on which nobody answers.
class MqttProgram : public testing::Test {
protected:
    void TearDown() override {
        program.kill();
        program.waitForFinished();
    }
    void start(const QByteArray& more) {
        const QString site = broker.path(QStringLiteral("north.toml"));
        writeSecret(site,
                    "[[channel]]\nid = 1\nname = \"line\"\ntype = \"SBus-Ethernet\"\n"
                    "primary = \"udp://127.0.0.1:9\"\n"
                    "[[channel.rtu]]\nid = 1\nname = \"pump\"\nstation = 5\ntimeout = \"100ms\"\n"
                    "[[channel.rtu.point]]\nid = 1\nname = \"RUN\"\nkind = \"status\"\naddress = \"O1\"\n"
                    "[mqtt]\nurl = \"" +
                        QByteArray::fromStdString(broker.url()) + "\"\n" + more);
        program.start(QStringLiteral(HOST_PROGRAM),
                      {QStringLiteral("run"), site, QStringLiteral("--no-control"),
                       QStringLiteral("--state-dir"), broker.path(QStringLiteral("state"))});
        ASSERT_TRUE(program.waitForStarted());
        EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("sbus/north/$state {\"state\":\"online\"")));
    }

    Broker broker;
    QProcess program;
    Subscriber subscriber{started(broker), {QStringLiteral("-t"), QStringLiteral("sbus/#")}};

private:
    static const Broker& started(Broker& one) {
        one.start();
        return one;
    }
};

TEST_F(MqttProgram, IsSaidByItsLastWillToBeGoneWhenItWasKilled) {
    start({});
    program.kill();
    EXPECT_TRUE(subscriber.hasHeard(QStringLiteral("sbus/north/$state {\"state\":\"offline\"}")));
}

TEST_F(MqttProgram, TellsHowACommandHasEnded) {
    start("commands = true\n");
    ASSERT_TRUE(eventually([&] {
        return publish(broker, {QStringLiteral("-t"), QStringLiteral("sbus/north/line/pump/RUN/set"),
                                QStringLiteral("-m"), QStringLiteral("{\"id\":7,\"value\":1}")}) &&
               !subscriber.lines().filter(QStringLiteral("RUN/set/result {\"id\":7,\"ok\":false")).isEmpty();
    }));
}
