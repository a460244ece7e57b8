#pragma once

#include "oneshot/Commands.h"

namespace CLI {
class App;
}

namespace host {

// Adds read, write and time-sync, each of which stores how it ended in `status`.
void addOneShotCommands(CLI::App& program, ExitStatus& status);

} // namespace host
