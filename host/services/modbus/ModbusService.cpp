#include "ModbusService.h"

namespace host {

std::string ModbusService::start(RunningSite& runningSite) {
    Findings findings; // told when the site was checked
    map = std::make_unique<ModbusMap>(runningSite.site, settings, findings);
    server = std::make_unique<ModbusServer>(
        ModbusGateway::Site{*map, settings, runningSite.values, runningSite.commands});
    std::string fault = server->start();
    if (!fault.empty())
        return fault;
    ListenAddress address = settings.listen;
    address.port = server->port();
    runningSite.messages.tell("modbus: listening on " + toText(address) +
                              (settings.takesWrites ? ", with writes" : ", read only"));
    return {};
}

void ModbusService::stop() {
    if (server)
        server->stop();
}

std::vector<ServiceFigure> ModbusService::figures() const {
    const ModbusCounts& counts = server->counts();
    return {{"clients", counts.clients},       {"requests", counts.requests}, {"writes", counts.writes},
            {"exceptions", counts.exceptions}, {"not_good", counts.notGood},  {"rejected", counts.rejected},
            {"replaced", counts.replaced},     {"rubbish", counts.rubbish}};
}

} // namespace host
