#pragma once

#include "CommandDispatcher.h"
#include "runtime/CoreFanOut.h"
#include "services/clocks/ClockSchedule.h"
#include "services/pulses/PulseSupervisor.h"

namespace host {

// What a running host does with commands: gives them to the driver one at a time, watches over pulses, sets
// clocks. Made once the runtime has started, stopped before the runtime is. Site, core and RTUs outlive it.
// Threads: submit() any; the rest the main thread.
class CommandService : public CommandTaker {
public:
    using Tell = PulseSupervisor::Tell;

    // Hears of values and states through `core`, the one that the runtime was made with.
    CommandService(const Site& site, CoreFanOut& core, const CommandDispatcher::FindRtu& findRtu,
                   const CommandDispatcher::AskIfRefused& askIfRefused, const Tell& tell);
    CommandService(const CommandService&) = delete;
    CommandService& operator=(const CommandService&) = delete;
    ~CommandService() override;

    std::string submit(const Command& command, CommandDone done) override;
    // Ends all commands as channel errors. From now on they are refused.
    void stop();

private:
    CoreFanOut& core;
    CommandDispatcher dispatcher;
    PulseSupervisor pulses;
    ClockSchedule clocks;
};

} // namespace host
