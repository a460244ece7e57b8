#include "LinePoller.h"

#include "HostRuntime.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>

#include <algorithm>
#include <limits>
#include <set>

namespace host {

namespace {

constexpr int integrity = static_cast<int>(Halvex::PollKind::Integrity);

bool isPolled(const Rtu& rtu) {
    return rtu.enabled && !rtu.points.empty();
}

// The channel asks it for nothing but an integrity poll when the line opens.
RemoteTerminalUnit secondRecord(const Rtu& rtu, int id) {
    RemoteTerminalUnit record = makeRtuRecord(rtu);
    record.id = id;
    record.enabled = false;
    record.periods = {0, 0, 0};
    return record;
}

std::size_t countStations(const Channel& channel) {
    std::set<unsigned> stations;
    for (const Rtu& rtu : channel.rtus)
        if (isPolled(rtu))
            stations.insert(rtu.station);
    return stations.size();
}

} // namespace

std::vector<int> secondRtuIds(const Channel& channel) {
    std::set<int> taken;
    for (const Rtu& rtu : channel.rtus)
        taken.insert(rtu.id);
    // Behind the site's own, so that they come last wherever RTUs are walked by their ids.
    const int highest = taken.empty() ? 0 : *taken.rbegin();
    const bool hasRoom =
        channel.rtus.size() < static_cast<std::size_t>(std::numeric_limits<int>::max() - highest);
    std::vector<int> ids;
    for (int id = hasRoom ? highest + 1 : 1; ids.size() < channel.rtus.size(); ++id)
        if (taken.count(id) == 0)
            ids.push_back(id);
    return ids;
}

std::chrono::milliseconds LinePoller::steadyNow() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

LinePoller::LinePoller(const Channel& configuredChannel, CChannel& driverChannel,
                       HalvexDriverCoreInterface& core, Listener whoHears, Clock steadyClock)
    : configured(configuredChannel), channel(driverChannel), listener(std::move(whoHears)),
      clock(std::move(steadyClock)) {
    const std::vector<int> ids = secondRtuIds(configured);
    for (std::size_t i = 0; i < configured.rtus.size(); ++i)
        if (isPolled(configured.rtus[i]))
            add(configured.rtus[i], ids[i], core);
}

void LinePoller::add(const Rtu& rtu, int secondId, HalvexDriverCoreInterface& core) {
    CRtu* const first = channel.GetRtuMap().value(rtu.id);
    CRtu* const second = channel.AddRtu(secondRecord(rtu, secondId));
    if (first == nullptr || second == nullptr)
        return;
    auto entry = std::make_unique<Entry>();
    entry->rtu = std::make_unique<PolledRtu>(
        configured, rtu, *first, *second, core, pointsMutex,
        PolledRtu::Listener{listener.pollEnded,
                            [this, &rtu](const RefusalNews& news) { listener.refusalsFound(rtu, news); }});
    entry->station = &stationOf(rtu);
    entry->station->rtus.push_back(entry->rtu.get());
    carriers[rtu.id] = {entry.get(), false};
    carriers[secondId] = {entry.get(), true};
    entries.push_back(std::move(entry));
}

LinePoller::Station& LinePoller::stationOf(const Rtu& rtu) {
    const bool hasLineToItself = countStations(configured) < 2;
    return stations.try_emplace(rtu.station, Station{StationRest(rtu.retry, hasLineToItself), {}, false})
        .first->second;
}

void LinePoller::prepare() {
    for (const auto& entry : entries)
        entry->rtu->prepare();
}

LinePoller::Carrier LinePoller::carrierOf(int driverRtuId) const {
    const auto found = carriers.find(driverRtuId);
    return found == carriers.end() ? Carrier() : found->second;
}

const Rtu* LinePoller::configuredOf(int driverRtuId) const {
    const Carrier carrier = carrierOf(driverRtuId);
    return carrier.entry == nullptr ? nullptr : &carrier.entry->rtu->configured();
}

std::vector<int> LinePoller::driverRtuIds() const {
    std::vector<int> ids;
    for (const auto& [id, carrier] : carriers)
        ids.push_back(id);
    return ids;
}

quint64 LinePoller::overrunsOf(int rtuId) const {
    const Carrier carrier = carrierOf(rtuId);
    return carrier.entry == nullptr ? 0 : carrier.entry->overruns.load(std::memory_order_relaxed);
}

bool LinePoller::wish(int rtuId) {
    const Carrier carrier = carrierOf(rtuId);
    if (carrier.entry == nullptr)
        return false;
    carrier.entry->isWished.store(true, std::memory_order_release);
    return true;
}

void LinePoller::takeTurn(const std::vector<DuePoll>& due) {
    listener.turnTaken();
    forgetLostRequests();
    for (const DuePoll& poll : due)
        if (const Carrier carrier = carrierOf(poll.rtu->GetRtuId()); carrier.entry != nullptr)
            wantDue(*carrier.entry, poll.kind);
    for (const auto& entry : entries)
        if (entry->isWished.exchange(false, std::memory_order_acq_rel)) {
            entry->rtu->want(integrity);
            entry->station->rest.hurry(clock());
        }
    for (auto& [number, station] : stations)
        takeTurn(station);
}

void LinePoller::wantDue(Entry& entry, int kind) {
    if (!entry.rtu->want(kind) && !entry.station->rest.isResting())
        entry.overruns.fetch_add(1, std::memory_order_relaxed);
}

void LinePoller::takeTurn(Station& station) {
    const bool isConnected = channel.IsConnect();
    if (!station.rest.isResting()) {
        for (PolledRtu* const rtu : station.rtus)
            rtu->proceed(isConnected);
        return;
    }
    if (station.isTrying)
        return;
    for (PolledRtu* const rtu : station.rtus)
        rtu->keepQuiet();
    station.isTrying = isConnected && station.rest.isDue(clock());
    if (station.isTrying)
        station.rtus.front()->tryAgain();
}

// A connected channel ends a request in each turn as long as one waits. Where none has ended, none waits.
void LinePoller::forgetLostRequests() {
    const bool isIdle = wasConnected && channel.IsConnect() && !hasRequestEnded;
    wasConnected = channel.IsConnect();
    hasRequestEnded = false;
    if (!isIdle)
        return;
    for (auto& [number, station] : stations) {
        station.isTrying = false;
        for (PolledRtu* const rtu : station.rtus)
            rtu->forgetRequest();
    }
}

void LinePoller::readEnded(int driverRtuId, const RequestEnd& end, const std::optional<ReadTelegram>& last) {
    hasRequestEnded = true;
    const Carrier carrier = carrierOf(driverRtuId);
    if (carrier.entry == nullptr)
        return;
    carrier.entry->rtu->requestEnded(carrier.isSecond, end, last);
    if (last)
        hear(*carrier.entry->station, end);
}

void LinePoller::commandEnded(int driverRtuId, const RequestEnd& end) {
    hasRequestEnded = true;
    if (const Carrier carrier = carrierOf(driverRtuId); carrier.entry != nullptr)
        hear(*carrier.entry->station, end);
}

void LinePoller::hear(Station& station, const RequestEnd& end) {
    station.isTrying = false;
    switch (end.kind) {
    case RequestEnd::Kind::Answered:
    case RequestEnd::Kind::Refused:
    case RequestEnd::Kind::BadAnswer:
        station.rest.heard();
        return;
    case RequestEnd::Kind::LineFailed:
    case RequestEnd::Kind::NotSent:
        return;
    case RequestEnd::Kind::NoAnswer:
        break;
    }
    // A station that answered the telegrams before is there.
    if (end.wasHeard)
        station.rest.heard();
    station.rest.silent(clock());
    if (station.rest.isSilent())
        for (PolledRtu* const rtu : station.rtus)
            rtu->giveUp();
}

void LinePoller::lineOpened(bool onSecondary, int result) {
    const bool isOtherEnd = std::exchange(isOnSecondary, onSecondary) != onSecondary;
    if (result != 0 || isOtherEnd)
        for (auto& [number, station] : stations) {
            station.isTrying = false;
            station.rest.heard();
        }
    for (const auto& entry : entries) {
        if (result == 0)
            entry->rtu->lineOpened();
        else
            entry->rtu->lineLost();
    }
}

} // namespace host
