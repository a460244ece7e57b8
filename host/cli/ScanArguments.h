#pragma once

#include "runtime/ExitStatus.h"

namespace CLI {
class App;
}

namespace host {

// Adds scan, which stores how it ended in `status`.
void addScanCommand(CLI::App& program, ExitStatus& status);

} // namespace host
