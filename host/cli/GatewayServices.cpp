#include "GatewayServices.h"

#ifdef SBUS_WITH_HISTORY
#include "services/history/HistoryService.h"
#endif

namespace host {

GatewayServices makeGatewayServices([[maybe_unused]] const Site& site) {
    GatewayServices services;
#ifdef SBUS_WITH_HISTORY
    if (site.history)
        services.push_back(std::make_unique<HistoryService>(*site.history));
#endif
    return services;
}

void checkGatewayServices([[maybe_unused]] const Site& site, [[maybe_unused]] Findings& findings) {
#ifndef SBUS_WITH_HISTORY
    if (site.history)
        findings.error(site.history->place, "this sbus-host was built without history",
                       "remove the table [history], or build with SBUS_WITH_HISTORY");
#endif
}

} // namespace host
