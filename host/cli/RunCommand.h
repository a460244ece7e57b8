#pragma once

#include "runtime/ExitStatus.h"
#include "services/capture/CaptureOptions.h"
#include "services/console/Output.h"
#include "services/log/LogOptions.h"

#include <chrono>
#include <functional>
#include <optional>

namespace host {

struct RunOptions {
    std::string sitePath;
    bool isOnLoopback = false;                         // every line leads to the simulator on this computer
    std::optional<std::chrono::milliseconds> duration; // until a signal comes, when left out
    std::optional<OutputFormat> format;                // a table on a terminal, else lines, when left out
    bool frames = false;
    std::optional<LogOptions> log;             // none: no log files
    std::string pluginPath;                    // empty: searched for
    bool takesControl = true;                  // opens a control socket
    std::string controlPath;                   // of that; empty: the site file's own
    std::string stateDirectory;                // of what is remembered beyond the end; empty: the user's
    std::optional<CaptureOptions> capture;     // none: telegrams are not captured
    std::function<void()> haveStarted = [] {}; // called once all lines run
};

// Runs a site until its time is over, a signal comes, or nobody reads the output any more.
ExitStatus runSite(const RunOptions& options);

} // namespace host
