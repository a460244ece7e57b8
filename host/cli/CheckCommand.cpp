#include "CheckCommand.h"

#include "GatewayServices.h"
#include "plan/Forecast.h"
#include "plan/LineChecks.h"
#include "plan/ModbusMapText.h"
#include "services/control/ControlGroup.h"

#include <iostream>

namespace host {

namespace {

// With everything that is wrong told.
LoadedSite loadAndTell(const std::string& path) {
    LoadedSite loaded = loadCheckedSite(path);
    checkControlGroup(loaded.site, loaded.findings);
    checkGatewayServices(loaded.site, loaded.findings);
    for (const Finding& finding : loaded.findings.all())
        std::cerr << toText(finding) << '\n';
    return loaded;
}

} // namespace

ExitStatus checkSiteFile(const std::string& path) {
    const LoadedSite loaded = loadAndTell(path);
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    std::cout << describeSite(loaded.site) << std::flush;
    return ExitStatus::Good;
}

ExitStatus tellModbusMap(const std::string& path, bool asCsv) {
    const LoadedSite loaded = loadAndTell(path);
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    if (!loaded.site.modbus) {
        std::cerr << "sbus-host: the site has no Modbus server; add a table [modbus] to its file\n";
        return ExitStatus::Configuration;
    }
    const ModbusSettings& settings = *loaded.site.modbus;
    Findings findings; // told before
    const ModbusMap map(loaded.site, settings, findings);
    std::cout << (asCsv ? modbusMapCsv(map, settings) : modbusMapTable(map, settings)) << std::flush;
    return ExitStatus::Good;
}

} // namespace host
