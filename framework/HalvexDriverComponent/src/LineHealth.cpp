#include "LineHealth.h"

#include <HalvexDriverComponent/Halvex.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// A single failure is often a passing one; three in a row mean that this end of the line is out of order.
constexpr int failuresUntilChange = 3;

// No further than it matters: a line may fail for years.
int oneMore(int failures) {
    return std::min(failures + 1, failuresUntilChange);
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

void LineHealth::setEnds(int count) {
    hasOtherEnd = count > 1;
    failedOpens = 0;
    channelErrors = 0;
}

void LineHealth::opened(qint64 now) {
    failedOpens = 0;
    endFailure(now);
}

void LineHealth::openFailed(qint64 now) {
    ++totals.failedOpens;
    failedOpens = oneMore(failedOpens);
    beginFailure(now);
}

void LineHealth::failed(qint64 now) {
    ++totals.channelErrors;
    channelErrors = oneMore(channelErrors);
    beginFailure(now);
}

void LineHealth::closedByHost(qint64 now) {
    endFailure(now);
}

bool LineHealth::requestEnded(int rtuId, Heard heard, bool isConnected) {
    controllers[rtuId] = {heard == Heard::Nothing, std::nullopt};
    if (heard == Heard::Answer)
        channelErrors = 0;
    // Where silence closes the line, as on Ethernet, it is a channel error already.
    if (heard != Heard::Nothing || !hasOtherEnd || !isConnected)
        return false;
    if (channelErrors + 1 >= failuresUntilChange)
        return true;
    ++channelErrors;
    return false;
}

bool LineHealth::wantsOtherEnd() const {
    return hasOtherEnd && (failedOpens >= failuresUntilChange || channelErrors >= failuresUntilChange);
}

void LineHealth::changedEnds() {
    failedOpens = 0;
    channelErrors = 0;
    ++totals.changesOfEnds;
}

bool LineHealth::isSilent(int rtuId) const {
    const auto controller = controllers.find(rtuId);
    return controller != controllers.end() && controller->second.isSilent;
}

bool LineHealth::mayPoll(const RemoteTerminalUnit& rtu, int kind, int rtusOfTheLine, qint64 now) {
    // One that has its line to itself keeps nobody waiting.
    if (rtusOfTheLine < 2 || !isSilent(rtu.id))
        return true;
    const Scan scan = mostFrequentScan(rtu.periods);
    if (kind != scan.kind)
        return false;
    std::optional<qint64>& since = controllers[rtu.id].restingSince;
    if (!since)
        since = now;
    return now - *since >= std::max(scan.periodMs, rtu.sessionTimeOutMs);
}

void LineHealth::forget(int rtuId) {
    controllers.erase(rtuId);
}

qint64 LineHealth::failedMs(qint64 now) const {
    return failedBefore + (failingSince ? now - *failingSince : 0);
}

void LineHealth::beginFailure(qint64 now) {
    if (!failingSince)
        failingSince = now;
}

void LineHealth::endFailure(qint64 now) {
    failedBefore = failedMs(now);
    failingSince.reset();
}
