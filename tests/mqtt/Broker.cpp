#include "Broker.h"

#include "Eventually.h"

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

namespace {

constexpr int patienceMs = 30'000;

bool isListening(int port) {
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(port));
    return socket.waitForConnected(1'000);
}

} // namespace

int Broker::freePort() {
    QTcpServer server;
    EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
    return server.serverPort();
}

Broker::Broker(const QByteArray& moreSettings, const QByteArray& listenerSettings) : ownPort(freePort()) {
    QFile file(path(QStringLiteral("mosquitto.conf")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray anonymous =
        moreSettings.contains("allow_anonymous") ? "" : QByteArray("allow_anonymous true\n");
    // As root it would become another user, who cannot read the test's folder.
    file.write("user root\nmax_queued_messages 0\nmax_inflight_messages 1000\n" + anonymous +
               QByteArray(moreSettings).replace("FOLDER", folder.path().toUtf8()) + "listener " +
               QByteArray::number(ownPort) + " 127.0.0.1\n" +
               QByteArray(listenerSettings).replace("FOLDER", folder.path().toUtf8()));
    program.setProcessChannelMode(QProcess::MergedChannels);
}

Broker::~Broker() {
    kill();
}

void Broker::start() {
    program.start(QStringLiteral("/usr/sbin/mosquitto"),
                  {QStringLiteral("-c"), path(QStringLiteral("mosquitto.conf"))});
    ASSERT_TRUE(program.waitForStarted(patienceMs));
    ASSERT_TRUE(eventually([this] { return isListening(ownPort); }))
        << program.readAllStandardOutput().toStdString();
}

void Broker::kill() {
    program.kill();
    program.waitForFinished(patienceMs);
}

void Broker::hang() {
    EXPECT_EQ(QProcess::execute(QStringLiteral("kill"),
                                {QStringLiteral("-STOP"), QString::number(program.processId())}),
              0);
}

Subscriber::Subscriber(const Broker& broker, const QStringList& arguments) {
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QStringLiteral("stdbuf"),
                  QStringList{QStringLiteral("-oL"), QStringLiteral("mosquitto_sub"), QStringLiteral("-d"),
                              QStringLiteral("-p"), QString::number(broker.port()), QStringLiteral("-F"),
                              QStringLiteral("%t %p"), QStringLiteral("-V"), QStringLiteral("5")} +
                      arguments);
    EXPECT_TRUE(program.waitForStarted(patienceMs));
    EXPECT_TRUE(hasHeard(QStringLiteral("SUBACK")));
}

Subscriber::~Subscriber() {
    program.kill();
    program.waitForFinished(patienceMs);
}

QStringList Subscriber::lines() {
    program.waitForReadyRead(10);
    unfinished += program.readAllStandardOutput();
    for (int end = unfinished.indexOf('\n'); end >= 0; end = unfinished.indexOf('\n')) {
        heard.append(QString::fromUtf8(unfinished.left(end)));
        unfinished.remove(0, end + 1);
    }
    return heard;
}

bool Subscriber::hasHeard(const QString& text) {
    return eventually([&] { return !lines().filter(text).isEmpty(); }, patienceMs);
}

bool publish(const Broker& broker, const QStringList& arguments) {
    QProcess program;
    program.start(QStringLiteral("mosquitto_pub"),
                  QStringList{QStringLiteral("-p"), QString::number(broker.port())} + arguments);
    return program.waitForFinished(patienceMs) && program.exitCode() == 0;
}
