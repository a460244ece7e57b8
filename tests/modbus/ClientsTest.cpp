#include "Mbpoll.h"
#include "ServedSite.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QModbusReply>
#include <QModbusTcpClient>

// The server, judged by clients that know nothing of it.

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Unit = QModbusDataUnit;

// Qt's client, asked one thing at a time.
class QtClient {
public:
    explicit QtClient(std::uint16_t port) {
        client.setConnectionParameter(QModbusDevice::NetworkAddressParameter, QStringLiteral("127.0.0.1"));
        client.setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
        client.setTimeout(30'000);
        EXPECT_TRUE(client.connectDevice());
        wait([this] { return client.state() == QModbusDevice::ConnectedState; });
    }
    ~QtClient() { client.disconnectDevice(); }

    // The values, or the exception's code as the only one.
    QVector<quint16> read(Unit::RegisterType type, int first, quint16 count, int unit = 1) {
        return valuesOf(client.sendReadRequest(Unit(type, first, count), unit));
    }
    QVector<quint16> write(Unit::RegisterType type, int first, const QVector<quint16>& values, int unit = 1) {
        return valuesOf(client.sendWriteRequest(Unit(type, first, values), unit));
    }

private:
    static QVector<quint16> valuesOf(QModbusReply* reply) {
        wait([reply] { return reply->isFinished(); });
        const QVector<quint16> values =
            reply->error() == QModbusDevice::NoError
                ? reply->result().values()
                : QVector<quint16>{static_cast<quint16>(reply->rawResult().exceptionCode())};
        EXPECT_TRUE(reply->error() == QModbusDevice::NoError ||
                    reply->error() == QModbusDevice::ProtocolError)
            << reply->errorString().toStdString();
        reply->deleteLater();
        return values;
    }
    template <typename Condition>
    static void wait(Condition condition) {
        QElapsedTimer elapsed;
        elapsed.start();
        while (!condition() && elapsed.elapsed() < 60'000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        EXPECT_TRUE(condition());
    }

    QModbusTcpClient client;
};

} // namespace

TEST(QtModbusClient, ReadsAllFourTables) {
    ServedSite served;
    QtClient client(served.server.port());
    EXPECT_THAT(client.read(Unit::DiscreteInputs, 0, 2), ElementsAre(1, 1));
    EXPECT_THAT(client.read(Unit::Coils, 1, 1), ElementsAre(1));
    EXPECT_THAT(client.read(Unit::InputRegisters, 0, 4), ElementsAre(0x3FC0, 0, 0xFFFF, 0xFFFE));
    EXPECT_THAT(client.read(Unit::HoldingRegisters, 1'000, 2), ElementsAre(1, 0x1170));
}

TEST(QtModbusClient, WritesCoilsAndRegisters) {
    ServedSite served;
    QtClient client(served.server.port());
    EXPECT_THAT(client.write(Unit::Coils, 1, {0}), ElementsAre(0));
    EXPECT_THAT(client.write(Unit::HoldingRegisters, 0, {0x4020, 0, 0, 7}), ElementsAre(0x4020, 0, 0, 7));
    EXPECT_THAT(served.taker.commands(), ElementsAre("4/7 2 off", "4/7 3=2.5 4=7"));
}

TEST(QtModbusClient, GetsExceptions) {
    ServedSite served;
    QtClient client(served.server.port());
    EXPECT_THAT(client.read(Unit::HoldingRegisters, 6, 2), ElementsAre(0x02));
    EXPECT_THAT(client.write(Unit::HoldingRegisters, 2, {7}), ElementsAre(0x02)); // half of a value
    EXPECT_THAT(client.write(Unit::HoldingRegisters, 1'000, {0xFFFF, 0xFFFF}), ElementsAre(0x03));
    publish(served.store, 7, 3, 5, PointQuality::Bad);
    EXPECT_THAT(client.read(Unit::HoldingRegisters, 0, 6), ElementsAre(0x0B));
    served.taker.endWith(Halvex::DriverErrorResult::TimeOut);
    EXPECT_THAT(client.write(Unit::Coils, 1, {1}), ElementsAre(0x0B));
}

TEST(QtModbusClient, FindsRtusBehindUnits) {
    host::ModbusSettings settings;
    settings.units = host::ModbusSettings::Units::Rtu;
    ServedSite served(settings);
    QtClient client(served.server.port());
    EXPECT_THAT(client.read(Unit::HoldingRegisters, 0, 2, 1), ElementsAre(0x3FC0, 0));
    EXPECT_THAT(client.read(Unit::HoldingRegisters, 0, 2, 2), ElementsAre(1, 0x1170));
    EXPECT_THAT(client.read(Unit::HoldingRegisters, 0, 2, 3), ElementsAre(0x0A));
    EXPECT_THAT(client.write(Unit::HoldingRegisters, 0, {0, 0}, 1), ElementsAre(0x01)); // read only
}

TEST(Mbpoll, ReadsAllFourTables) {
    ServedSite served;
    const std::uint16_t port = served.server.port();
    EXPECT_THAT(mbpoll(port, words("-t 1 -r 0 -c 2")), HasSubstr("[0]: \t1\n[1]: \t1\n"));
    EXPECT_THAT(mbpoll(port, words("-t 0 -r 1")), HasSubstr("[1]: \t1\n"));
    EXPECT_THAT(mbpoll(port, words("-t 3:int -r 2")), HasSubstr("[2]: \t-2\n"));
    EXPECT_THAT(mbpoll(port, words("-t 4:float -r 0 -c 1")), HasSubstr("[0]: \t1.5\n"));
    EXPECT_THAT(mbpoll(port, words("-t 4:float -r 4 -c 1")), HasSubstr("[4]: \t12.34\n"));
    EXPECT_THAT(mbpoll(port, words("-t 4:int -r 1000 -a 7")), HasSubstr("[1000]: \t70000\n"));
}

TEST(Mbpoll, WritesCoilsAndValues) {
    ServedSite served;
    const std::uint16_t port = served.server.port();
    EXPECT_THAT(mbpoll(port, words("-t 0 -r 1"), words("1")), HasSubstr("Written 1 references."));
    EXPECT_THAT(mbpoll(port, words("-t 4:int -r 2"), words("-- -5")), HasSubstr("Written 1 references."));
    EXPECT_THAT(mbpoll(port, words("-t 4:float -r 4"), words("1234.56")), HasSubstr("Written 1 references."));
    EXPECT_THAT(served.taker.commands(), ElementsAre("4/7 2 on", "4/7 4=-5", "4/7 5=1234.56"));
}

TEST(Mbpoll, IsToldOfExceptions) {
    ServedSite served;
    const std::uint16_t port = served.server.port();
    EXPECT_THAT(mbpoll(port, words("-t 4:int -r 6")), HasSubstr("Illegal data address"));
    EXPECT_THAT(mbpoll(port, words("-t 4 -r 2"), words("7")), HasSubstr("Illegal data address"));
    publish(served.store, 7, 3, 5, PointQuality::Bad);
    EXPECT_THAT(mbpoll(port, words("-t 4:int -r 2")), HasSubstr("Target device failed to respond"));
    served.taker.endWith(Halvex::DriverErrorResult::Success, true);
    EXPECT_THAT(mbpoll(port, words("-t 0 -r 1"), words("1")), HasSubstr("Slave device or server failure"));
}
