#pragma once

#include "RunCommand.h"

#include <string>

namespace host {

// The service has the options of `run`; its paths are made full ones.
ExitStatus installService(const std::string& name, const RunOptions& options);
ExitStatus removeService(const std::string& name);
ExitStatus startService(const std::string& name);
ExitStatus stopService(const std::string& name);

// Runs the site in this process, which the service manager has started. Messages go to the event log.
ExitStatus runService(const std::string& name, const RunOptions& options);

} // namespace host
