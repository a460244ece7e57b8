#pragma once

#include "commands/Command.h"
#include "runtime/ExchangeFeed.h"
#include "runtime/RtuOutcome.h"
#include "services/ServiceFigures.h"

namespace host {

struct HostFigures {
    std::vector<ChannelFigures> channels;
    std::vector<RtuOutcome> rtus;
    std::vector<ServiceFigures> services;
};

// The running host, as the control server sees it. Called on the server's thread.
class ControlledHost : public CommandTaker {
public:
    // Asks an RTU for an integrity poll. The result tells only whether the driver took the wish over.
    virtual Halvex::DriverErrorResult requestPoll(int channelId, int rtuId) = 0;
    virtual HostFigures siteFigures() const = 0;
    // Both outlive the server.
    virtual const Site& site() const = 0;
    virtual ExchangeFeed& exchanges() = 0;
};

} // namespace host
