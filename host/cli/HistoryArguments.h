#pragma once

#include "runtime/ExitStatus.h"

namespace CLI {
class App;
}

namespace host {

// Adds history, which stores how it ended in `status`.
void addHistoryCommand(CLI::App& program, ExitStatus& status);

} // namespace host
