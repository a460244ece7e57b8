#include "ControlService.h"

#include "site/NumberText.h"
#include "site/PointText.h"
#include "site/PointValue.h"

#include <QJsonArray>

#include <algorithm>

namespace host {

namespace {

// Figures are counted anew no sooner: a client that asks without pause costs the host no more than this.
constexpr std::chrono::milliseconds statusAge{100};
constexpr std::size_t mostFaultsTold = 3; // of wrong names in one request

template <typename Ref>
QJsonValue jsonName(const SiteNames& names, const Ref& ref) {
    return QString::fromStdString(names.nameOf(ref));
}

// What a point's value is once it was sent.
QJsonObject sentValue(const Point& point, double raw) {
    QJsonObject object{{QStringLiteral("value"), shownValue(point, raw)}};
    if (const std::string& unit = unitOf(point); !unit.empty())
        object.insert(QStringLiteral("unit"), QString::fromStdString(unit));
    if (hasRaw(point))
        object.insert(QStringLiteral("raw"), shownRaw(point, raw));
    return object;
}

// Polls too: they take the lines' time.
bool isCommand(const RequestAction& action) {
    return std::holds_alternative<WriteRequest>(action) || std::holds_alternative<TimeSyncRequest>(action) ||
           std::holds_alternative<PollRequest>(action);
}

// Of several wrong names.
class Faults {
public:
    void add(const std::string& fault) {
        if (count++ < mostFaultsTold)
            text += (text.empty() ? "" : "; ") + fault;
    }
    bool isEmpty() const { return count == 0; }
    // Looking for near names takes long: no more of them than are told.
    bool isFull() const { return count >= mostFaultsTold; }
    const std::string& toText() const { return text; }

private:
    std::string text;
    std::size_t count = 0;
};

} // namespace

ControlService::ControlService(ControlledHost& controlledHost, const ValueStore& valueStore,
                               const Settings& serviceSettings)
    : controlled(controlledHost), store(valueStore), names(valueStore.points()), settings(serviceSettings),
      finished(std::make_shared<FinishedCommands>(serviceSettings.wake)), reader(valueStore),
      trace(controlledHost.site(), controlledHost.exchanges(), serviceSettings.send,
            serviceSettings.hasRoom) {}

ControlService::~ControlService() {
    finished->close();
}

void ControlService::handleLine(ClientId client, const QByteArray& line) {
    const auto parsed = parseRequest(line);
    if (const auto* const bad = std::get_if<BadRequest>(&parsed))
        settings.send(client, errorReply(bad->id, ReplyFault::Malformed, bad->fault));
    else
        handle(client, std::get<Request>(parsed));
}

void ControlService::handleTooLongLine(ClientId client) {
    settings.send(client, errorReply(QJsonValue::Undefined, ReplyFault::Malformed,
                                     "the line is longer than " + std::to_string(longestRequestLine) +
                                         " bytes; what follows up to its end is passed over"));
}

void ControlService::handle(ClientId client, const Request& request) {
    if (isCommand(request.action) && readers.count(client) > 0) {
        settings.send(client, errorReply(request.id, ReplyFault::Permission,
                                         "permission denied: you may use status, watch and trace alone; the "
                                         "site file gives your group no more"));
        return;
    }
    std::visit([&](const auto& action) { handle(client, request.id, action); }, request.action);
}

void ControlService::handle(ClientId client, const QJsonValue& id, const WriteRequest& request) {
    if (const auto commands = makeWrites(client, id, request))
        submit(client, id, *commands);
}

std::optional<std::vector<ControlService::NamedCommand>>
ControlService::makeWrites(ClientId client, const QJsonValue& id, const WriteRequest& request) {
    Faults faults;
    std::vector<NamedCommand> commands;
    for (const PointValue& one : request.values) {
        if (faults.isFull())
            break;
        const auto match = names.findPoint(one.point);
        const PointRef& ref = match.found;
        if (!match.fault.empty()) {
            faults.add(match.fault);
            continue;
        }
        const bool isStatus = ref.point->kind == PointKind::Status;
        const RawNumber raw = isStatus ? RawNumber{one.value, {}} : rawOf(*ref.point, one.value);
        if (!ref.rtu->enabled)
            faults.add("RTU \"" + names.nameOf(SiteNames::RtuRef{ref.channel, ref.rtu}) +
                       "\" is disabled in the site file");
        else if (isStatus && one.value != 0 && one.value != 1)
            faults.add("\"" + one.point + "\" is a status point: it takes 0 or 1");
        else if (!raw.fault.empty())
            faults.add("\"" + one.point + "\" = " + numberText(one.value) + ": " + raw.fault);
        const CommandAction action = isStatus ? CommandAction(SwitchPoint{ref.point->id, one.value != 0})
                                              : CommandAction(SetPoint{ref.point->id, one.value});
        QJsonObject subject = sentValue(*ref.point, raw.raw);
        subject.insert(QStringLiteral("point"), jsonName(names, ref));
        commands.push_back({subject, {ref.channel->id, ref.rtu->id, action}, {}});
    }
    if (faults.isEmpty())
        return commands;
    settings.send(client, errorReply(id, ReplyFault::Unknown, faults.toText() + "; nothing was written"));
    return std::nullopt;
}

std::optional<std::vector<SiteNames::RtuRef>>
ControlService::findRtus(ClientId client, const QJsonValue& id, const RtuNames& rtuNames, bool withDisabled) {
    std::vector<SiteNames::RtuRef> found;
    if (rtuNames.empty()) {
        const auto isWanted = [withDisabled](const SiteNames::RtuRef& ref) {
            return withDisabled || ref.rtu->enabled;
        };
        std::copy_if(names.rtus().begin(), names.rtus().end(), std::back_inserter(found), isWanted);
        return found;
    }
    Faults faults;
    for (const std::string& name : rtuNames) {
        if (faults.isFull())
            break;
        const auto match = names.findRtu(name);
        if (!match.fault.empty())
            faults.add(match.fault);
        else if (!withDisabled && !match.found.rtu->enabled)
            faults.add("RTU \"" + name + "\" is disabled in the site file");
        else
            found.push_back(match.found);
    }
    if (faults.isEmpty())
        return found;
    settings.send(client, errorReply(id, ReplyFault::Unknown, faults.toText()));
    return std::nullopt;
}

void ControlService::handle(ClientId client, const QJsonValue& id, const PollRequest& request) {
    const auto rtus = findRtus(client, id, request.rtus, false);
    if (!rtus)
        return;
    QJsonArray results;
    bool allTaken = true;
    for (const SiteNames::RtuRef& ref : *rtus) {
        const CommandOutcome outcome{controlled.requestPoll(ref.channel->id, ref.rtu->id), false, {}};
        QJsonObject one = toJson(outcome);
        one.insert(QStringLiteral("rtu"), jsonName(names, ref));
        // How the poll ends is seen in the values: the driver drops a wish that equals a pending one.
        if (isSuccess(outcome))
            one.insert(QStringLiteral("result"), QStringLiteral("asked for"));
        allTaken = allTaken && isSuccess(outcome);
        results.append(one);
    }
    settings.send(client, reply(id, allTaken, {{QStringLiteral("results"), results}}));
}

void ControlService::handle(ClientId client, const QJsonValue& id, const TimeSyncRequest& request) {
    const auto rtus = findRtus(client, id, request.rtus, false);
    if (!rtus)
        return;
    std::vector<NamedCommand> commands;
    for (const SiteNames::RtuRef& ref : *rtus)
        commands.push_back({{{QStringLiteral("rtu"), jsonName(names, ref)}},
                            {ref.channel->id, ref.rtu->id, SynchroniseClock{}},
                            isClockInReach(ref.channel->type) ? "" : clockOutOfReach});
    submit(client, id, commands);
}

void ControlService::submit(ClientId client, const QJsonValue& id,
                            const std::vector<NamedCommand>& commands) {
    if (openCounts[client] >= mostOpenRequests) {
        settings.send(client,
                      errorReply(id, ReplyFault::Busy,
                                 std::to_string(mostOpenRequests) +
                                     " requests of this connection wait for their results; wait for one"));
        return;
    }
    // However many there are, one request is carried out.
    if (openCommands > 0 && openCommands + commands.size() > mostOpenCommands) {
        settings.send(client, errorReply(id, ReplyFault::Busy,
                                         std::to_string(openCommands) +
                                             " commands of all connections wait for their results; at most " +
                                             std::to_string(mostOpenCommands) + " may"));
        return;
    }
    openCommands += commands.size();
    const quint64 ticket = ++lastTicket;
    OpenRequest& request = openRequests[ticket];
    ++openCounts[client];
    request.client = client;
    request.id = id;
    request.outcomes.resize(commands.size());
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const Command& command = commands[i].command;
        request.subjects.push_back(commands[i].subject);
        const auto done = [results = finished, ticket, i](const CommandEnd& end) {
            results->add(ticket, i, end);
        };
        request.outcomes[i].why =
            commands[i].leftOut.empty() ? controlled.submit(command, done) : commands[i].leftOut;
        request.outcomes[i].isLeftOut = !commands[i].leftOut.empty();
        if (request.outcomes[i].why.empty())
            ++request.open;
    }
    answerIfComplete(ticket);
}

void ControlService::answerFinished() {
    for (const FinishedCommands::Entry& entry : finished->take()) {
        const auto found = openRequests.find(entry.ticket);
        if (found == openRequests.end())
            continue; // its client is gone
        found->second.outcomes[entry.index] = entry.outcome;
        --found->second.open;
        answerIfComplete(entry.ticket);
    }
}

void ControlService::answerIfComplete(quint64 ticket) {
    const auto found = openRequests.find(ticket);
    const OpenRequest& request = found->second;
    if (request.open > 0)
        return;
    QJsonArray results;
    for (std::size_t i = 0; i < request.outcomes.size(); ++i) {
        QJsonObject one = toJson(request.outcomes[i]);
        for (auto part = request.subjects[i].begin(); part != request.subjects[i].end(); ++part)
            one.insert(part.key(), part.value());
        results.append(one);
    }
    const bool allGood = isAllDone(request.outcomes);
    const QByteArray line = reply(request.id, allGood, {{QStringLiteral("results"), results}});
    const ClientId client = request.client;
    close(found);
    --openCounts[client];
    settings.send(client, line);
}

void ControlService::close(std::map<quint64, OpenRequest>::const_iterator request) {
    openCommands -= request->second.outcomes.size();
    openRequests.erase(request);
}

void ControlService::handle(ClientId client, const QJsonValue& id, const StatusRequest&) {
    const Clock::time_point now = settings.now();
    if (!statusTime || now - *statusTime >= statusAge) {
        const HostFigures figures = controlled.siteFigures();
        statusCache = statusParts(figures);
        statusTime = now;
    }
    settings.send(client, reply(id, true, statusCache));
}

void ControlService::handle(ClientId client, const QJsonValue& id, const WatchRequest& request) {
    const auto rtus = findRtus(client, id, request.rtus, true);
    if (!rtus)
        return;
    if (isWatching(client)) {
        settings.send(client,
                      errorReply(id, ReplyFault::Busy, "this connection watches already; open another"));
        return;
    }
    if (watches.size() >= mostWatches) {
        settings.send(client, errorReply(id, ReplyFault::Busy,
                                         std::to_string(mostWatches) + " connections watch already"));
        return;
    }
    Watch watch;
    watch.blocks.resize(store.points().blocks().size());
    int count = 0;
    for (const SiteNames::RtuRef& ref : *rtus) {
        const PointTable::Block* const block = store.points().find(ref.channel->id, ref.rtu->id);
        const std::size_t place = store.points().placeOf(*block);
        if (!watch.blocks[place])
            count += static_cast<int>(block->count);
        watch.blocks[place] = true;
    }
    if (watches.empty())
        reader.skipToEnd(); // nobody has asked for what was before
    watches.emplace(client, std::move(watch));
    settings.send(client, reply(id, true, {{QStringLiteral("points"), count}}));
}

void ControlService::handle(ClientId client, const QJsonValue& id, const TraceRequest& request) {
    ControlTrace::Wanted wanted = trace.find(request.channels);
    if (!wanted.fault.empty())
        settings.send(client, errorReply(id, ReplyFault::Unknown, wanted.fault));
    else if (trace.isTracing(client))
        settings.send(client,
                      errorReply(id, ReplyFault::Busy, "this connection traces already; open another"));
    else if (trace.count() >= mostTraces)
        settings.send(client, errorReply(id, ReplyFault::Busy,
                                         std::to_string(mostTraces) + " connections trace already"));
    else {
        const int count = static_cast<int>(wanted.channelIds.size());
        settings.send(client, reply(id, true, {{QStringLiteral("channels"), count}}));
        trace.begin(client, std::move(wanted.channelIds));
    }
}

bool ControlService::isServing(ClientId client) const {
    const auto open = openCounts.find(client);
    return isWatching(client) || trace.isTracing(client) || (open != openCounts.end() && open->second > 0);
}

void ControlService::forget(ClientId client) {
    watches.erase(client);
    trace.forget(client);
    openCounts.erase(client);
    readers.erase(client);
    for (auto request = openRequests.begin(); request != openRequests.end();) {
        const auto next = std::next(request);
        if (request->second.client == client)
            close(request);
        request = next;
    }
}

void ControlService::end() {
    answerFinished();
    for (const auto& [ticket, request] : openRequests)
        settings.send(request.client,
                      errorReply(request.id, ReplyFault::Ending,
                                 "the host ends; whether the command was carried out is not known"));
    openRequests.clear();
    openCounts.clear();
    openCommands = 0;
}

} // namespace host
