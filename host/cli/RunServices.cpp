#include "RunServices.h"

#include "services/capture/CaptureService.h"
#include "services/console/ConsoleService.h"
#include "services/console/StreamWriter.h"
#include "services/control/ControlSocket.h"

namespace host {

RunServices::RunServices(const RunOptions& options, OutputFormat format, Console& console) {
    auto shown =
        std::make_unique<ConsoleService>(console, format, "sbus-host  " + options.sitePath, options.frames);
    consoleService = shown.get();
    services.push_back(std::move(shown));
    if (options.capture)
        services.push_back(std::make_unique<CaptureService>(*options.capture));
    if (options.takesControl)
        services.push_back(std::make_unique<ControlSocket>(options.controlPath, options.sitePath));
}

RunServices::~RunServices() {
    stop();
}

std::string RunServices::start(RunningSite& site) {
    for (const std::unique_ptr<Service>& service : services) {
        std::string fault = service->start(site);
        if (!fault.empty()) {
            stop();
            return fault;
        }
    }
    return {};
}

void RunServices::stop() {
    for (auto service = services.rbegin(); service != services.rend(); ++service)
        (*service)->stop();
}

} // namespace host
