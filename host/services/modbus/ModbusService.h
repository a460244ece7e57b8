#pragma once

#include "ModbusServer.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <memory>

namespace host {

// Lets clients of Modbus TCP read, and where the site file says so write, the points of a running site.
class ModbusService : public Service {
public:
    explicit ModbusService(const ModbusSettings& modbusSettings) : settings(modbusSettings) {}

    std::string name() const override { return "modbus"; }
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

    std::uint16_t port() const { return server->port(); } // from start() on

private:
    const ModbusSettings settings;
    std::unique_ptr<ModbusMap> map;
    std::unique_ptr<ModbusServer> server;
};

} // namespace host
