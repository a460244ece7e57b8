#pragma once

#include "commands/Command.h"
#include "plan/OneShotSite.h"
#include "runtime/HostRuntime.h"
#include "runtime/RunLog.h"
#include "telegram/Exchange.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>
#include <HalvexDriverLink/CLink.h>

#include <mutex>
#include <optional>

class CReply;

namespace host {

// How a command ended.
struct CommandEnding {
    enum class Kind { Done, Refused, Failed, NotSent };

    Kind kind = Kind::NotSent;
    std::string reason;     // what happened and what to check; empty when it is done
    bool isSilent = false;  // no answer at all came
    TelegramBytes telegram; // that was sent last
};

// Gives commands to one controller through the plug-in, one at a time.
// States: made, open (after open), closed (after a signal). Main thread, but for what the plug-in reports.
class CommandSender : private HalvexDriverCoreInterface {
public:
    // A site of makeWriteSite, which outlives the sender. Without a link factory the line's own end is
    // opened.
    CommandSender(const ControllerLine& controllerLine, const Site& writeSite,
                  HostRuntime::LinkFactory linkFactory = makeLink);
    ~CommandSender() override;

    // Empty, or why the plug-in does not run.
    std::string open(const std::string& pluginPath);
    // Waits for the line, gives the command and waits for its result. Nothing is sent any more after a signal
    // or when the line cannot be opened.
    CommandEnding send(const CommandAction& action);

private:
    void publishPoints(int, int, const QVector<PointUpdate>&) override {}
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}

    void noteResult(const RequestResult& result);
    // Why there is no line; empty when it is open.
    std::string awaitLine();
    bool hasSentWrite() const;
    Halvex::DriverErrorResult awaitReply(CReply* reply);
    CommandEnding endingOf(Halvex::DriverErrorResult result);

    const ControllerLine line;
    const Site& site;

    mutable std::mutex mutex;                 // guards the two that follow
    std::optional<RequestResult> writeResult; // of the last write that was sent
    std::string lineFault;                    // why the line was not opened the last time

    RunLog log;
    HostRuntime runtime; // ends before what it reports to
};

} // namespace host
