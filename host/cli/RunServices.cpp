#include "RunServices.h"

#include "GatewayServices.h"
#include "commands/CommandDispatcher.h"
#include "runtime/StartThread.h"
#include "services/capture/CaptureService.h"
#include "services/clocks/ClockSchedule.h"
#include "services/console/ConsoleService.h"
#include "services/console/StreamWriter.h"
#include "services/control/ControlSocket.h"
#include "services/log/SiteLog.h"
#include "services/pulses/PulseSupervisor.h"
#include "services/supervisor/SupervisorLink.h"

#include <ControlCharacters.h>

namespace host {

namespace {

RunningSite runningSiteOf(const RunServices::Host& host, CommandTaker& commands) {
    HostRuntime& runtime = host.runtime;
    return {host.site,
            host.values,
            runtime.exchanges(),
            commands,
            host.messages,
            [&runtime] {
                return SiteFigures{runtime.channelFigures(), runtime.rtuFigures()};
            },
            [&runtime](int channelId, int rtuId) { return runtime.requestPoll(channelId, rtuId); }};
}

} // namespace

// Commands pass the pulses' supervisor on their way to the dispatcher.
RunServices::RunServices(const RunOptions& options, OutputFormat format, const Host& host) {
    const auto tell = [&messages = host.messages](const std::string& message) {
        messages.tell(message, Severity::Warning);
    };
    auto pulses = std::make_unique<PulseSupervisor>(host.values, host.dispatcher, tell);
    pulses->useMemory(std::make_unique<PulseMemory>(options.stateDirectory, options.sitePath));
    pulseSupervisor = pulses.get();
    runningSite = std::make_unique<RunningSite>(runningSiteOf(host, *pulses));
    if (options.log) // the first: it starts before, and ends after, all that have something to say
        services.push_back(std::make_unique<SiteLog>(*options.log));
    runningSite->serviceFigures = [this] { return figures(); };
    services.push_back(std::move(pulses));
    services.push_back(std::make_unique<ClockSchedule>(host.site, host.dispatcher, tell));
    auto shown = std::make_unique<ConsoleService>(
        host.console, format, "sbus-host  " + text::printable(options.sitePath), options.frames);
    consoleService = shown.get();
    services.push_back(std::move(shown));
    if (options.capture)
        services.push_back(std::make_unique<CaptureService>(*options.capture));
    for (std::unique_ptr<Service>& service :
         makeGatewayServices(host.site, {options.sitePath, options.stateDirectory}))
        services.push_back(std::move(service));
    if (std::optional<Supervisor> supervisor = findSupervisor()) {
        auto link = std::make_unique<SupervisorLink>(std::move(*supervisor));
        supervisorLink = link.get();
        services.push_back(std::move(link));
    }
    // The last one to start and the first to stop: it tells the others' figures.
    if (options.takesControl)
        services.push_back(std::make_unique<ControlSocket>(options.controlPath, options.sitePath));
}

RunServices::~RunServices() {
    stop();
}

std::string RunServices::startOne(Service& service) {
    try {
        return service.start(*runningSite);
    } catch (const ThreadRefused& refusal) {
        return refusal.what();
    }
}

std::string RunServices::start() {
    for (const std::unique_ptr<Service>& service : services) {
        std::string fault = startOne(*service);
        if (!fault.empty()) {
            stop();
            return fault;
        }
    }
    return {};
}

void RunServices::tellEnding() {
    if (supervisorLink != nullptr)
        supervisorLink->tellEnding();
}

std::vector<ServiceFigures> RunServices::figures() const {
    std::vector<ServiceFigures> all;
    for (const std::unique_ptr<Service>& service : services)
        all.push_back({service->name(), service->figures()});
    return all;
}

void RunServices::stop() {
    for (auto service = services.rbegin(); service != services.rend(); ++service)
        (*service)->stop();
}

} // namespace host
