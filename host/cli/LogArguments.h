#pragma once

#include "services/log/LogOptions.h"

#include <memory>
#include <optional>

namespace CLI {
class App;
}

namespace host {

// What a command line says of the log directory, filled while it is parsed.
struct GivenLog {
    std::string directory; // empty: there is no log
    std::string fileSize;
    unsigned files = LogOptions().files;
};

// Adds the options to a sub-command.
std::shared_ptr<GivenLog> addLogOptions(CLI::App& command);
std::optional<LogOptions> logOf(const GivenLog& given, bool withFrames);

} // namespace host
