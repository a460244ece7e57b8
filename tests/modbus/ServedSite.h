#pragma once

#include "HoldingTaker.h"
#include "ModbusSite.h"
#include "services/modbus/ModbusServer.h"

#include <gtest/gtest.h>

#include <QTcpSocket>

#include <memory>

// A server on a free port, with values that are all good and commands that succeed unless they are held.
class ServedSite {
public:
    explicit ServedSite(const host::ModbusSettings& modbusSettings = withWrites())
        : settings(modbusSettings) {
        settings.listen = {"127.0.0.1", 0, {}};
        publishAll(store);
        EXPECT_EQ(server.start(), "");
    }

    static host::ModbusSettings withWrites() {
        host::ModbusSettings settings;
        settings.takesWrites = true;
        return settings;
    }

    std::unique_ptr<QTcpSocket> connect() {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(QStringLiteral("127.0.0.1"), server.port());
        EXPECT_TRUE(socket->waitForConnected(60'000));
        return socket;
    }

    const host::Site site = modbusSite();
    host::ModbusSettings settings;
    host::Findings findings;
    const host::ModbusMap map{site, settings, findings};
    host::ValueStore store{site};
    HoldingTaker taker;
    host::ModbusServer server{{map, settings, store, taker}};
};
