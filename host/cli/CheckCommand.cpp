#include "CheckCommand.h"

#include "plan/Forecast.h"
#include "plan/LineChecks.h"

#include <iostream>

namespace host {

ExitStatus checkSiteFile(const std::string& path) {
    const LoadedSite loaded = loadCheckedSite(path);
    for (const Finding& finding : loaded.findings.all())
        std::cerr << toText(finding) << '\n';
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    std::cout << describeSite(loaded.site) << std::flush;
    return ExitStatus::Good;
}

} // namespace host
