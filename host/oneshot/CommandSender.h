#pragma once

#include "commands/Command.h"
#include "plan/OneShotSite.h"
#include "runtime/HostRuntime.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>
#include <HalvexDriverLink/CLink.h>

#include <future>
#include <mutex>
#include <optional>

namespace host {

// How a command ended.
struct CommandEnding {
    enum class Kind { Done, Refused, Failed, NotSent };

    Kind kind = Kind::NotSent;
    std::string reason;                   // what happened and what to check; empty when it is done
    bool isSilent = false;                // no answer at all came
    std::vector<TelegramBytes> telegrams; // that were sent for it
};

// Gives commands to one controller through the plug-in, one at a time.
// States: made, open (after open), closed (after a signal). Main thread, but for what the plug-in reports.
class CommandSender : private HalvexDriverCoreInterface, private LineListener {
public:
    // A site of makeWriteSite, which outlives the sender. Without a link factory the line's own end is
    // opened.
    CommandSender(const ControllerLine& controllerLine, const Site& writeSite,
                  HostRuntime::LinkFactory linkFactory = makeLink);
    ~CommandSender() override;

    ExchangeFeed& exchanges() { return runtime.exchanges(); }
    // Empty, or why the plug-in does not run.
    std::string open(const std::string& pluginPath);
    // Waits for the line, gives the command and waits for its result. Nothing is sent any more after a signal
    // or when the line cannot be opened.
    CommandEnding send(const CommandAction& action);

private:
    void publishPoints(int, int, const QVector<PointUpdate>&) override {}
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}

    void noteExchange(const Exchange& exchange);
    void requestEnded(const RequestEnd& end) override;
    void lineOpened(const Channel& channel, bool onSecondary, int result) override;
    // Why there is no line; empty when it is open.
    std::string awaitLine();
    bool hasSentWrite() const;
    Halvex::DriverErrorResult awaitReply(std::future<Halvex::DriverErrorResult>& replied);
    CommandEnding endingOf(Halvex::DriverErrorResult result);

    const ControllerLine line;
    const Site& site;

    mutable std::mutex mutex;             // guards what follows
    std::vector<TelegramBytes> telegrams; // of writes, since the command was given
    bool isWriteOnTheWay = false;         // one of them is of the request in progress
    std::optional<RequestEnd> writeEnd;   // of the last request that sent any
    std::string lineFault;                // why the line was not opened the last time

    HostRuntime runtime;                              // ends before what it reports to
    const std::unique_ptr<ExchangeFeed::Watch> watch; // of the runtime's feed
};

} // namespace host
