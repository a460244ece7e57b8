#include "CheckCommand.h"

#include "GatewayServices.h"
#include "plan/Forecast.h"
#include "plan/LineChecks.h"
#include "services/control/ControlGroup.h"

#include <iostream>

namespace host {

ExitStatus checkSiteFile(const std::string& path) {
    LoadedSite loaded = loadCheckedSite(path);
    checkControlGroup(loaded.site, loaded.findings);
    checkGatewayServices(loaded.site, loaded.findings);
    for (const Finding& finding : loaded.findings.all())
        std::cerr << toText(finding) << '\n';
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    std::cout << describeSite(loaded.site) << std::flush;
    return ExitStatus::Good;
}

} // namespace host
