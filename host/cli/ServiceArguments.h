#pragma once

#include "runtime/ExitStatus.h"

namespace CLI {
class App;
}

namespace host {

// Adds "service" to the program's commands; `status` gets how it ends. Where the services are not those of
// Windows it is not listed, and tells whose they are.
void addServiceCommand(CLI::App& program, ExitStatus& status);

} // namespace host
