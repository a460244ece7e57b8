#pragma once

#include "RunCommand.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <memory>
#include <string>
#include <vector>

namespace host {

class CommandDispatcher;
class ConsoleService;
class PulseSupervisor;
class SupervisorLink;
struct Console;

// The services of `sbus-host run`. This is the one place outside of its own folder that a new service is
// entered in. Main thread.
class RunServices {
public:
    // What they work on: prepared, and outliving them. The dispatcher is stopped before they are destroyed.
    struct Host {
        const Site& site;
        ValueStore& values;
        Messages& messages;
        HostRuntime& runtime;
        CommandDispatcher& dispatcher;
        Console& console;
    };

    RunServices(const RunOptions& options, OutputFormat format, const Host& host);
    RunServices(const RunServices&) = delete;
    RunServices& operator=(const RunServices&) = delete;
    ~RunServices();

    // Starts all, in their order. Empty, or why one of them cannot; then all are stopped.
    std::string start();
    // The run is about to end; what runs goes on until stop().
    void tellEnding();
    // Stops all, the last one first.
    void stop();

    const ConsoleService& console() const { return *consoleService; }
    PulseSupervisor& pulses() { return *pulseSupervisor; }

private:
    std::string startOne(Service& service);
    std::vector<ServiceFigures> figures() const;

    std::vector<std::unique_ptr<Service>> services;
    const ConsoleService* consoleService = nullptr; // one of them
    PulseSupervisor* pulseSupervisor = nullptr;     // another one
    SupervisorLink* supervisorLink = nullptr;       // another one, or null
    std::unique_ptr<RunningSite> runningSite;       // what they see
};

} // namespace host
