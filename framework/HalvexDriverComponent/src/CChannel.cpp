#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include "LineHealth.h"
#include "ReplyRegistry.h"
#include "ScanSchedule.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

qint64 steadyMilliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

LineHealth::Heard heardOf(unsigned answers, const RoundTrips& trips) {
    if (answers > 0)
        return LineHealth::Heard::Answer;
    return trips.last.count() > 0 ? LineHealth::Heard::SpoiltAnswer : LineHealth::Heard::Nothing;
}

} // namespace

PollTaker::~PollTaker() = default;

CChannel::CChannel(HalvexDriverCoreInterface* hostCore, int channelNumber)
    : core(hostCore), id(channelNumber), scanClock(steadyMilliseconds),
      replies(std::make_unique<ReplyRegistry>()), health(std::make_unique<LineHealth>()) {}

// What the derived class has is gone by now; no place of this class comes earlier.
CChannel::~CChannel() {
    refuseWhileRunning("deleted");
    qDeleteAll(rtus);
    rtus.clear();
}

void CChannel::SetLinks(std::unique_ptr<CLink> primary, std::unique_ptr<CLink> secondary) {
    refuseWhileRunning("given other links");
    links[0] = std::move(primary);
    links[1] = std::move(secondary);
    whereLink.store(!links[0] && links[1] ? 1 : 0, std::memory_order_release);
    const std::lock_guard<std::mutex> lock(healthMutex);
    health->setEnds(links[0] && links[1] ? 2 : 1);
}

CRtu* CChannel::AddRtu(const RemoteTerminalUnit& info) {
    refuseWhileRunning("given an RTU");
    CRtu* rtu = CreateRtu(info);
    if (!rtu)
        return nullptr;
    delete std::exchange(rtus[info.id], rtu);
    restartScans();
    const std::lock_guard<std::mutex> lock(healthMutex);
    health->forget(info.id);
    return rtu;
}

CLink* CChannel::GetLink() const {
    return links[GetWhereLink()].get();
}

void CChannel::SetConnect(bool connect) {
    if (connect)
        lineOpened();
    else if (QThread::currentThread() == this)
        lineFailed();
    else
        lineClosedByHost();
}

void CChannel::lineOpened() {
    connected.store(true, std::memory_order_release);
    const std::lock_guard<std::mutex> lock(healthMutex);
    health->opened(steadyMilliseconds());
}

// If the line is not open again at once, the failed open disconnects the RTUs.
void CChannel::lineFailed() {
    if (!connected.exchange(false, std::memory_order_acq_rel))
        return;
    const std::lock_guard<std::mutex> lock(healthMutex);
    health->failed(steadyMilliseconds());
}

void CChannel::lineClosedByHost() {
    connected.store(false, std::memory_order_release);
    {
        const std::lock_guard<std::mutex> lock(healthMutex);
        health->closedByHost(steadyMilliseconds());
    }
    disconnectRtus();
}

// Whoever runs the exchanges: the channel's thread, or anybody while it does not run.
bool CChannel::mayUseLine() const {
    return !isRunning() || QThread::currentThread() == this;
}

// In release builds too: going on would end in a crash elsewhere, which tells nobody its reason.
void CChannel::refuseWhileRunning(const char* what) const {
    if (!isRunning())
        return;
    std::fprintf(stderr,
                 "channel %d is %s while its thread runs: call SetShutdown(true) and wait() before this\n",
                 id, what);
    std::fflush(stderr);
    std::abort();
}

void CChannel::CheckScan() {
    const qint64 now = scanClock();
    changeEndIfDue();
    if (scansRestarted.exchange(false, std::memory_order_acq_rel))
        makeSchedule(now);
    const std::vector<DuePoll> due = takeDuePolls(now);
    if (pollTaker != nullptr)
        pollTaker->takeTurn(due);
    else
        for (const DuePoll& poll : due)
            askFor(*poll.rtu, poll.kind, now);
}

std::vector<DuePoll> CChannel::takeDuePolls(qint64 now) {
    std::vector<DuePoll> polls;
    if (!IsConnect()) {
        scansPaused = true;
        return polls;
    }
    if (std::exchange(scansPaused, false))
        schedule->skipTo(now);
    for (const ScanSchedule::Poll& poll : schedule->due(now))
        if (CRtu* const rtu = rtus.value(poll.rtuId, nullptr))
            polls.push_back({rtu, poll.kind});
    scanOverruns += schedule->takeOverruns();
    return polls;
}

void CChannel::askFor(CRtu& rtu, int kind, qint64 now) {
    {
        const std::lock_guard<std::mutex> lock(healthMutex);
        if (!health->mayPoll(rtu.GetRtuInfo(), kind, rtus.size(), now))
            return;
    }
    rtu.RequestPoll(kind, nullptr);
}

void CChannel::PutCommFailDuration() {
    {
        const std::lock_guard<std::mutex> lock(healthMutex);
        health->openFailed(steadyMilliseconds());
    }
    disconnectRtus();
}

void CChannel::PutChannelStatus() {
    if (core)
        core->publishChannelStatus(id, GetChannelStatus());
}

RoundTrips CChannel::NoteRequestEnd(int rtuId, unsigned answers) {
    CLink* const link = GetLink();
    if (!link || !mayUseLine())
        return {};
    const RoundTrips trips = link->takeRoundTrips();
    // A poll taker may leave an RTU nothing to ask for. Such a request succeeds without a telegram and says
    // nothing about the line.
    if (pollTaker != nullptr && answers > 0 && trips.count == 0)
        return trips;
    bool isToFail = false;
    {
        const std::lock_guard<std::mutex> lock(healthMutex);
        isToFail = health->requestEnded(rtuId, heardOf(answers, trips), IsConnect());
    }
    if (isToFail)
        lineFailed();
    return trips;
}

bool CChannel::IsSilent(int rtuId) const {
    const std::lock_guard<std::mutex> lock(healthMutex);
    return health->isSilent(rtuId);
}

ChannelStatus CChannel::GetChannelStatus() const {
    ChannelStatus status;
    status.connected = IsConnect();
    status.whereLink = GetWhereLink();
    status.scanOverruns = scanOverruns;
    const std::lock_guard<std::mutex> lock(healthMutex);
    status.failedOpens = health->figures().failedOpens;
    status.channelErrors = health->figures().channelErrors;
    status.linkChanges = health->figures().changesOfEnds;
    status.failedMs = health->failedMs(steadyMilliseconds());
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
        if (rtu && rtu->IsEnable())
            scanned.push_back({rtu->GetRtuId(), rtu->GetRtuInfo().periods});
    schedule = std::make_unique<ScanSchedule>(scanned, now);
}

void CChannel::changeEndIfDue() {
    if (IsConnect() || !wantsOtherEnd())
        return;
    CLink& used = *links[GetWhereLink()];
    used.close();
    // What was measured on this end must not be taken for a later RTU's when the end is in use again.
    used.takeRoundTrips();
    whereLink.store(1 - GetWhereLink(), std::memory_order_release);
    const std::lock_guard<std::mutex> lock(healthMutex);
    health->changedEnds();
}

bool CChannel::wantsOtherEnd() const {
    const std::lock_guard<std::mutex> lock(healthMutex);
    return health->wantsOtherEnd();
}

void CChannel::disconnectRtus() {
    for (CRtu* rtu : std::as_const(rtus))
        if (rtu)
            rtu->SetConnect(false, true);
}
