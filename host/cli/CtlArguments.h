#pragma once

#include "runtime/ExitStatus.h"

namespace CLI {
class App;
}

// Adds "ctl" with its requests to the program's commands; `status` gets how it ends.
void addCtlCommand(CLI::App& program, host::ExitStatus& status);
