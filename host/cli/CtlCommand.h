#pragma once

#include "runtime/ExitStatus.h"
#include "services/control/Request.h"

#include <optional>
#include <string>

namespace host {

struct CtlOptions {
    std::string sitePath;
    std::string socketPath; // empty: derived from the site file
    bool json = false;      // replies and values as they come over the socket
    RequestAction request;
};

// Asks the host that runs the site for something and shows what it says. A watch goes on until a signal
// comes, the host ends, or nobody reads the output any more.
ExitStatus askRunningHost(const CtlOptions& options);

// "pump-house/P1_START=1"; the value is a number, or on, off, true or false. Nothing for anything else.
std::optional<PointValue> parsePointValue(const std::string& text);

} // namespace host
