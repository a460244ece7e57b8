#pragma once

#include "ControlTrace.h"
#include "ControlledHost.h"
#include "FinishedCommands.h"
#include "Request.h"
#include "SiteNames.h"
#include "values/ChangeReader.h"
#include "values/ChangeText.h"

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <set>

namespace host {

// Answers requests, without any socket: lines of clients in, lines for clients out. One thread, but for the
// ends of commands, which may come on any and are answered for with answerFinished().
//
// Values: every change goes from the store to the watchers through tellChanges(). A new watcher is first told
// the current values, piece by piece as it reads them, and of each piece only the changes that its values do
// not hold yet, which their sequence numbers tell. After changes were missed, all watchers are told the
// current values once more.
class ControlService {
public:
    using Clock = std::chrono::steady_clock;
    using Send = std::function<void(ClientId, const QByteArray&)>;

    struct Settings {
        Send send;                     // a line for a client, without its end
        ControlTrace::HasRoom hasRoom; // for exchanges
        std::function<void()> wake;    // answerFinished() has something to do; any thread
        std::function<Clock::time_point()> now = Clock::now;
    };

    // Host and store outlive the service.
    ControlService(ControlledHost& controlledHost, const ValueStore& valueStore,
                   const Settings& serviceSettings);
    ControlService(const ControlService&) = delete;
    ControlService& operator=(const ControlService&) = delete;
    ~ControlService();

    // The client may ask, and command nothing.
    void allowReadingAlone(ClientId client) { readers.insert(client); }
    void handleLine(ClientId client, const QByteArray& line);
    void handleTooLongLine(ClientId client);
    // The client is gone. Its commands go on, nobody is told how they end.
    void forget(ClientId client);

    void answerFinished();
    void tellChanges();
    void tellExchanges() { trace.tell(); }
    // Sends a watcher at most so many of the current values that it was not told yet. True when more are
    // left.
    bool tellCurrentValues(ClientId client, std::size_t most);
    bool isWatching(ClientId client) const { return watches.count(client) > 0; }
    // Whether the client waits for a result, or is told of what happens.
    bool isServing(ClientId client) const;
    // Tells every client that waits for a result that none will come.
    void end();

    static constexpr std::size_t mostOpenRequests = 64; // of one client
    // In the open requests of all clients together. Each takes about a kilobyte until its request has ended,
    // which at a silent RTU takes minutes.
    static constexpr std::size_t mostOpenCommands = 10'000;
    static constexpr std::size_t mostWatches = 100; // each change is sent so often
    static constexpr std::size_t mostTraces = 16;   // each exchange is sent so often

private:
    struct OpenRequest {
        ClientId client = 0;
        QJsonValue id;
        std::vector<QJsonObject> subjects; // what each command is about, as the reply tells it
        std::vector<CommandOutcome> outcomes;
        std::size_t open = 0; // commands without a result
    };
    // Current values that were told together: those behind the piece before, as far as `end`.
    struct Piece {
        PointIndex end = 0;
        std::uint64_t firstChange = 0; // the first one that is not in them
    };
    struct Watch {
        std::vector<bool> blocks;   // which of the points' blocks, one for each RTU, it watches
        PointIndex nextCurrent = 0; // values from here on are still to be told
        std::deque<Piece> pieces;   // as far as they hold changes that tellChanges() still comes to
    };
    struct NamedCommand {
        QJsonObject subject;
        Command command;
        std::string leftOut; // why it is not given in
    };

    void handle(ClientId client, const Request& request);
    void handle(ClientId client, const QJsonValue& id, const WriteRequest& request);
    void handle(ClientId client, const QJsonValue& id, const PollRequest& request);
    void handle(ClientId client, const QJsonValue& id, const TimeSyncRequest& request);
    void handle(ClientId client, const QJsonValue& id, const StatusRequest& request);
    void handle(ClientId client, const QJsonValue& id, const WatchRequest& request);
    void handle(ClientId client, const QJsonValue& id, const TraceRequest& request);
    // Sends the error and returns nothing when a name is wrong.
    std::optional<std::vector<SiteNames::RtuRef>> findRtus(ClientId client, const QJsonValue& id,
                                                           const RtuNames& rtuNames, bool withDisabled);
    std::optional<std::vector<NamedCommand>> makeWrites(ClientId client, const QJsonValue& id,
                                                        const WriteRequest& request);
    void submit(ClientId client, const QJsonValue& id, const std::vector<NamedCommand>& commands);
    void answerIfComplete(quint64 ticket);
    void close(std::map<quint64, OpenRequest>::const_iterator request);
    void tellChange(std::uint64_t number, const PointChange& change);
    static bool isToBeTold(const Watch& watch, std::size_t block, PointIndex index, std::uint64_t number);
    QByteArray changeLine(const PointRef& ref, const PointState& state);

    ControlledHost& controlled;
    const ValueStore& store;
    const SiteNames names;
    const Settings settings;
    const std::shared_ptr<FinishedCommands> finished;

    ChangeReader reader;
    std::vector<PointChange> changes; // kept for its memory, as the two that follow
    std::vector<PointState> states;
    std::string lineText;
    const std::unique_ptr<ChangeText> changeText = makeJsonText();
    std::map<ClientId, Watch> watches;
    ControlTrace trace;
    std::map<quint64, OpenRequest> openRequests; // by ticket
    std::map<ClientId, std::size_t> openCounts;
    std::size_t openCommands = 0; // in the open requests
    std::set<ClientId> readers;
    quint64 lastTicket = 0;
    QJsonObject statusCache;
    std::optional<Clock::time_point> statusTime; // of the cache
};

} // namespace host
