#include "ScanSchedule.h"

#include <HalvexDriverComponent/Halvex.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

std::array<std::pair<Halvex::PollKind, int>, 3> pollPeriods(const ScanPeriods& periods) {
    return {{{Halvex::PollKind::Integrity, periods.integrityMs},
             {Halvex::PollKind::Status, periods.statusMs},
             {Halvex::PollKind::Analog, periods.analogMs}}};
}

} // namespace

ScanSchedule::ScanSchedule(const std::vector<Rtu>& rtus, qint64 start) {
    const qint64 slots = static_cast<qint64>(rtus.size()) * 3;
    qint64 slot = 0;
    for (const Rtu& rtu : rtus) {
        for (const auto& [kind, period] : pollPeriods(rtu.periods)) {
            if (period > 0)
                entries.push_back(
                    {{rtu.id, static_cast<int>(kind)}, period, start + qint64{period} * slot / slots});
            ++slot;
        }
    }
}

std::vector<ScanSchedule::Poll> ScanSchedule::due(qint64 now) {
    std::vector<std::pair<qint64, Poll>> found;
    for (Entry& entry : entries) {
        if (entry.next > now)
            continue;
        found.emplace_back(entry.next, entry.poll);
        overruns += static_cast<quint64>(advance(entry, now) - 1);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<Poll> polls;
    polls.reserve(found.size());
    for (const auto& [time, poll] : found)
        polls.push_back(poll);
    return polls;
}

void ScanSchedule::skipTo(qint64 now) {
    for (Entry& entry : entries)
        if (entry.next <= now)
            advance(entry, now);
}

quint64 ScanSchedule::takeOverruns() {
    return std::exchange(overruns, 0);
}

qint64 ScanSchedule::advance(Entry& entry, qint64 now) {
    const qint64 passed = (now - entry.next) / entry.period + 1;
    entry.next += passed * entry.period;
    return passed;
}
