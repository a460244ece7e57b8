#pragma once

#include "CoreFanOut.h"
#include "commands/CommandDispatcher.h"
#include "runtime/HostRuntime.h"
#include "runtime/LineMessages.h"
#include "services/RunningSite.h"
#include "services/clocks/ClockSchedule.h"
#include "services/pulses/PulseSupervisor.h"
#include "values/ValueStore.h"

#include <HalvexDriverLink/CLink.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

// A host that runs a site through the plug-in's file and takes commands, as `sbus-host run` does, but in the
// test's own process.
// States: made (the site is being described), running, stopped for good. Main thread, but for commands().
class RunningSite {
public:
    RunningSite() = default;
    RunningSite(const RunningSite&) = delete;
    RunningSite& operator=(const RunningSite&) = delete;
    ~RunningSite();

    // Before start().
    host::Site& site() { return description; }
    // Hears of values and states like the host's own parts do; outlives the run.
    void listen(HalvexDriverCoreInterface& listener) { core.add(listener); }
    // With links of the test's own making.
    void makeLinks(host::HostRuntime::LinkFactory factory) { makeLink = std::move(factory); }

    void start(const std::string& pluginFile);
    void stop();

    host::HostRuntime& hostRuntime() { return *runtime; }
    host::CommandTaker& commands() { return *pulses; }
    Halvex::DriverErrorResult carryOut(const host::Command& command);
    // Whether every RTU has answered at least once.
    bool haveAllAnswered() const;
    const host::ValueStore& values() const { return *store; }
    std::vector<std::string> messages() const;
    // What the lines told since the last call.
    std::vector<std::string> takeLineMessages() { return ofTheLines.take(); }

private:
    host::Site description;
    mutable std::mutex mutex; // guards the messages
    std::vector<std::string> told;
    std::unique_ptr<host::ValueStore> store;
    CoreFanOut core;
    host::Messages ofTheLines;
    host::LineMessages lineMessages{ofTheLines};
    host::HostRuntime::LinkFactory makeLink = host::makeLink;
    std::unique_ptr<host::HostRuntime> runtime;
    std::unique_ptr<host::PulseSupervisor> pulses;
    std::unique_ptr<host::ClockSchedule> clocks;
    std::unique_ptr<host::CommandDispatcher> dispatcher; // before the two that it tells results
    std::unique_ptr<host::RunningSite> services;
};
