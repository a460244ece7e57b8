#pragma once

#include "LogArguments.h"
#include "RunCommand.h"

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

struct GivenCapture;

// What a command line says of a run that nobody looks at, filled while it is parsed.
struct GivenRun {
    RunOptions options;
    std::shared_ptr<GivenLog> log;
    std::shared_ptr<GivenCapture> capture;
};

// Adds the options of `run` that have nothing to do with a terminal to a sub-command.
std::shared_ptr<GivenRun> addUnattendedOptions(CLI::App& command);
RunOptions runOptionsOf(const GivenRun& given);

// The arguments behind the site file that say the same, with full paths.
std::vector<std::string> unattendedArguments(const RunOptions& options);

} // namespace host
