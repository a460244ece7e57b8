#include "CommandService.h"

#include <utility>

namespace host {

CommandService::CommandService(const Site& site, CoreFanOut& valueCore,
                               const CommandDispatcher::FindRtu& findRtu,
                               const CommandDispatcher::AskIfRefused& askIfRefused, const Tell& tell)
    : core(valueCore), dispatcher(site, findRtu, askIfRefused), pulses(site, dispatcher, tell),
      clocks(site, dispatcher, tell) {
    core.add(pulses);
    core.add(clocks);
}

CommandService::~CommandService() {
    stop();
}

std::string CommandService::submit(const Command& command, CommandDone done) {
    return pulses.submit(command, std::move(done));
}

void CommandService::stop() {
    core.remove(pulses);
    core.remove(clocks);
    dispatcher.stop();
}

} // namespace host
