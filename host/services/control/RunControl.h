#pragma once

#include "ControlServer.h"
#include "values/ValueStore.h"

#include <functional>

namespace host {

class HostRuntime;
class RunLog;

// Opens a running site to control clients. Stopped before runtime and commands are. Store, runtime and log
// outlive it. Main thread, but for what ControlledHost says.
class RunControl : private ControlledHost {
public:
    using Figures = std::function<HostFigures()>; // any thread

    RunControl(const ValueStore& values, HostRuntime& hostRuntime, const RunLog& runLog,
               Figures countFigures);
    RunControl(const RunControl&) = delete;
    RunControl& operator=(const RunControl&) = delete;
    ~RunControl() override;

    // Serves `path`, or the site file's own socket when it is empty. Empty, or why nobody can command this
    // host.
    std::string start(CommandTaker& commandTaker, const std::string& path, const std::string& sitePath);
    void stop();

private:
    std::string submit(const Command& command, CommandDone done) override;
    Halvex::DriverErrorResult requestPoll(int channelId, int rtuId) override;
    HostFigures figures() const override;
    bool wasRefused(int channelId, int rtuId) const override;

    HostRuntime& runtime;
    const RunLog& log;
    const Figures count;
    CommandTaker* taker = nullptr; // from start() on
    ControlServer server;
};

} // namespace host
