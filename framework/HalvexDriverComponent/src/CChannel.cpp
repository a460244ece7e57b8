#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include "ReplyRegistry.h"
#include "ScanSchedule.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// A single failure is often a passing one; three in a row mean that this end of the line is out of order.
constexpr int failuresUntilChange = 3;

qint64 steadyMilliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

struct Scan {
    int kind;
    int periodMs;
};

// Of those with a period.
Scan mostFrequentScan(const ScanPeriods& periods) {
    using Halvex::PollKind;
    Scan best{static_cast<int>(PollKind::Integrity), std::numeric_limits<int>::max()};
    for (const auto& [kind, periodMs] :
         {std::pair{PollKind::Status, periods.statusMs}, std::pair{PollKind::Analog, periods.analogMs},
          std::pair{PollKind::Integrity, periods.integrityMs}})
        if (periodMs > 0 && periodMs < best.periodMs)
            best = {static_cast<int>(kind), periodMs};
    return best;
}

} // namespace

CChannel::CChannel(HalvexDriverCoreInterface* hostCore, int channelNumber)
    : core(hostCore), id(channelNumber), scanClock(steadyMilliseconds),
      replies(std::make_unique<ReplyRegistry>()) {}

CChannel::~CChannel() {
    qDeleteAll(rtus);
    rtus.clear();
}

void CChannel::SetLinks(std::unique_ptr<CLink> primary, std::unique_ptr<CLink> secondary) {
    links[0] = std::move(primary);
    links[1] = std::move(secondary);
    whereLink.store(!links[0] && links[1] ? 1 : 0, std::memory_order_release);
    failedOpensInARow = 0;
    errorsInARow = 0;
}

CRtu* CChannel::AddRtu(const RemoteTerminalUnit& info) {
    CRtu* rtu = CreateRtu(info);
    if (!rtu)
        return nullptr;
    rests.erase(rtus.value(info.id));
    delete std::exchange(rtus[info.id], rtu);
    restartScans();
    return rtu;
}

CLink* CChannel::GetLink() const {
    return links[GetWhereLink()].get();
}

void CChannel::SetConnect(bool connect) {
    const bool before = connected.exchange(connect, std::memory_order_acq_rel);
    if (connect) {
        failedOpensInARow = 0;
        endFailure();
    } else if (QThread::currentThread() != this) {
        // The host closes the channel: its silence from now on is no failure.
        endFailure();
        disconnectRtus();
    } else if (before) {
        // The RTUs stay connected: mostly the line is open again at once. If not, the failed open says so.
        beginFailure();
        ++channelErrors;
        if (++errorsInARow >= failuresUntilChange)
            changeLink();
    }
}

void CChannel::CheckScan() {
    const qint64 now = scanClock();
    if (scansRestarted.exchange(false, std::memory_order_acq_rel))
        makeSchedule(now);
    if (!IsConnect()) {
        scansPaused = true;
        return;
    }
    if (std::exchange(scansPaused, false))
        schedule->skipTo(now);
    for (const ScanSchedule::Poll& poll : schedule->due(now))
        if (CRtu* rtu = rtus.value(poll.rtuId, nullptr))
            askFor(*rtu, poll.kind, now);
    scanOverruns += schedule->takeOverruns();
}

// An RTU that has its line to itself keeps nobody waiting.
void CChannel::askFor(CRtu& rtu, int kind, qint64 now) {
    const bool isBurden = rtus.size() > 1 && rtu.IsSilent();
    if (isBurden && !(kind == mostFrequentScan(rtu.GetRtuInfo().periods).kind && hasRested(rtu, now)))
        return;
    rtu.RequestPoll(kind, nullptr);
}

// Whether no request of this RTU has ended for its period, and for as long as its last one took from the
// others.
bool CChannel::hasRested(const CRtu& rtu, qint64 now) {
    const quint64 requests = rtu.GetRtuStatus().requests;
    const auto [rest, isNew] = rests.try_emplace(&rtu, Rest{requests, now});
    if (!isNew && rest->second.requests != requests)
        rest->second = {requests, now};
    const int periodMs = mostFrequentScan(rtu.GetRtuInfo().periods).periodMs;
    return now - rest->second.since >= std::max(periodMs, rtu.sessionTimeOut());
}

void CChannel::PutCommFailDuration() {
    ++failedOpens;
    beginFailure();
    disconnectRtus();
    if (++failedOpensInARow >= failuresUntilChange)
        changeLink();
}

void CChannel::PutChannelStatus() {
    if (core)
        core->publishChannelStatus(id, GetChannelStatus());
}

void CChannel::NoteAnswer() {
    errorsInARow = 0;
}

// Where it closes the channel, as on Ethernet, it is counted there.
void CChannel::NoteSilence() {
    if (!IsConnect() || !links[0] || !links[1])
        return;
    if (errorsInARow + 1 < failuresUntilChange)
        ++errorsInARow;
    else
        SetConnect(false);
}

ChannelStatus CChannel::GetChannelStatus() const {
    ChannelStatus status;
    status.connected = IsConnect();
    status.whereLink = GetWhereLink();
    status.failedOpens = failedOpens;
    status.channelErrors = channelErrors;
    status.linkChanges = linkChanges;
    status.scanOverruns = scanOverruns;
    const std::lock_guard<std::mutex> lock(failureMutex);
    auto failed = failedBefore;
    if (failingSince)
        failed += std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                        *failingSince);
    status.failedMs = failed.count();
    return status;
}

void CChannel::InterruptLinks() {
    for (const auto& link : links)
        if (link)
            link->interrupt();
}

void CChannel::SetScanClock(std::function<qint64()> clock) {
    scanClock = std::move(clock);
}

void CChannel::makeSchedule(qint64 now) {
    std::vector<ScanSchedule::Rtu> scanned;
    for (const CRtu* rtu : std::as_const(rtus))
        if (rtu->IsEnable())
            scanned.push_back({rtu->GetRtuId(), rtu->GetRtuInfo().periods});
    schedule = std::make_unique<ScanSchedule>(scanned, now);
}

void CChannel::changeLink() {
    const int used = GetWhereLink();
    const int other = 1 - used;
    if (!links[used] || !links[other])
        return;
    links[used]->close();
    // What was measured on this end must not be taken for a later RTU's when the end is in use again.
    links[used]->takeRoundTrips();
    failedOpensInARow = 0;
    errorsInARow = 0;
    ++linkChanges;
    whereLink.store(other, std::memory_order_release);
}

void CChannel::disconnectRtus() {
    for (CRtu* rtu : std::as_const(rtus))
        rtu->SetConnect(false, true);
}

void CChannel::beginFailure() {
    const std::lock_guard<std::mutex> lock(failureMutex);
    if (!failingSince)
        failingSince = std::chrono::steady_clock::now();
}

void CChannel::endFailure() {
    const std::lock_guard<std::mutex> lock(failureMutex);
    if (!failingSince)
        return;
    failedBefore += std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                          *failingSince);
    failingSince.reset();
}
