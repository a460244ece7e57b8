#pragma once

#include "commands/Command.h"
#include "runtime/ExchangeFeed.h"
#include "runtime/HostRuntime.h"
#include "runtime/Messages.h"
#include "services/ServiceFigures.h"
#include "values/ValueStore.h"

#include <functional>

namespace host {

// A site at work, as its services see it. Any thread may use all of it while the services run.
struct RunningSite {
    const Site& site;
    const ValueStore& values; // points, their states, the changes of them
    ExchangeFeed& exchanges;  // every telegram and its answer
    CommandTaker& commands;   // each gets exactly one result
    Messages& messages;       // for people
    std::function<SiteFigures()> figures;
    // Asks an RTU for an integrity poll. The result tells only whether the driver took the wish over.
    std::function<Halvex::DriverErrorResult(int channelId, int rtuId)> requestPoll;
    // What the services tell of themselves.
    std::function<std::vector<ServiceFigures>()> serviceFigures = [] {
        return std::vector<ServiceFigures>();
    };
};

} // namespace host
