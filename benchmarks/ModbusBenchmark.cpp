#include "ModbusServer.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QModbusTcpClient>
#include <QVariant>

#include <benchmark/benchmark.h>
#include <modbus.h>

#include <array>

// What else reads registers of a controller over a network: 125 of them, the most that a Modbus telegram
// takes, from the same server. A Modbus register has 16 bits, one of S-Bus 32.

namespace {

constexpr int registers = 125;

void libmodbus(benchmark::State& state) {
    const ModbusServer server;
    modbus_t* const client = modbus_new_tcp("127.0.0.1", server.port());
    if (modbus_connect(client) != 0)
        state.SkipWithError("no connection");
    std::array<std::uint16_t, registers> values{};
    std::int64_t read = 0;
    while (state.KeepRunning())
        read += modbus_read_registers(client, 0, registers, values.data());
    if (read != state.iterations() * registers)
        state.SkipWithError("not every request was answered with all of its values");
    state.SetItemsProcessed(read);
    modbus_close(client);
    modbus_free(client);
}
BENCHMARK(libmodbus)->Name("Modbus/libmodbus")->UseRealTime()->Unit(benchmark::kMicrosecond);

bool connectClient(QModbusTcpClient& client, int port) {
    client.setConnectionParameter(QModbusDevice::NetworkAddressParameter, QStringLiteral("127.0.0.1"));
    client.setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
    QEventLoop loop;
    QObject::connect(&client, &QModbusDevice::stateChanged, &loop, [&](QModbusDevice::State reached) {
        if (reached != QModbusDevice::ConnectingState)
            loop.quit();
    });
    if (!client.connectDevice())
        return false;
    if (client.state() == QModbusDevice::ConnectingState)
        loop.exec();
    return client.state() == QModbusDevice::ConnectedState;
}

// The values read.
int read(QModbusTcpClient& client) {
    QModbusReply* const reply =
        client.sendReadRequest(QModbusDataUnit(QModbusDataUnit::HoldingRegisters, 0, registers), 1);
    if (reply == nullptr)
        return 0;
    if (!reply->isFinished()) {
        QEventLoop loop;
        QObject::connect(reply, &QModbusReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    const int count = static_cast<int>(reply->result().valueCount());
    delete reply;
    return count;
}

void qtModbus(benchmark::State& state) {
    int argumentCount = 1;
    char name[] = "sbus-benchmarks";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const ModbusServer server;
    QModbusTcpClient client;
    if (!connectClient(client, server.port()))
        state.SkipWithError("no connection");
    std::int64_t values = 0;
    while (state.KeepRunning())
        values += read(client);
    if (values != state.iterations() * registers)
        state.SkipWithError("not every request was answered with all of its values");
    state.SetItemsProcessed(values);
    client.disconnectDevice();
}
BENCHMARK(qtModbus)->Name("Modbus/QModbusTcpClient")->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
