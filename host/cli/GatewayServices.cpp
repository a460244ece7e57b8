#include "GatewayServices.h"

#ifdef SBUS_WITH_HISTORY
#include "services/history/HistoryService.h"

#include <filesystem>
#endif

namespace host {

#ifdef SBUS_WITH_HISTORY
namespace {

// The host begins without it, and records once it is there.
void checkHistoryFolder(const HistorySettings& history, Findings& findings) {
    const std::filesystem::path folder =
        std::filesystem::absolute(std::filesystem::u8path(history.file)).parent_path();
    std::error_code failure;
    if (!std::filesystem::is_directory(folder, failure))
        findings.warning(history.place, "the history's folder " + folder.u8string() + " is not there",
                         "make it, and let the host's user write to it");
}

} // namespace
#endif

GatewayServices makeGatewayServices([[maybe_unused]] const Site& site) {
    GatewayServices services;
#ifdef SBUS_WITH_HISTORY
    if (site.history)
        services.push_back(std::make_unique<HistoryService>(*site.history));
#endif
    return services;
}

void checkGatewayServices([[maybe_unused]] const Site& site, [[maybe_unused]] Findings& findings) {
#ifdef SBUS_WITH_HISTORY
    if (site.history)
        checkHistoryFolder(*site.history, findings);
#else
    if (site.history)
        findings.error(site.history->place, "this sbus-host was built without history",
                       "remove the table [history], or build with SBUS_WITH_HISTORY");
#endif
}

} // namespace host
