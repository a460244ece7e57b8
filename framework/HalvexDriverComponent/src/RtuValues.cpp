#include "RtuValues.h"

#include <algorithm>

CRtu::Values::Entry& CRtu::Values::Entries::search(unsigned number, std::mutex& guard) {
    const auto found = byNumber.find(number);
    if (found != byNumber.end())
        return found->second;
    const std::lock_guard<std::mutex> lock(guard);
    Entry& entry = byNumber[number];
    entry.published.analog = isAnalog;
    entry.published.number = number;
    entry.staged = entry.published;
    entry.staged.quality = PointQuality::Good;
    table.enter(number, &entry, byNumber.size());
    return entry;
}

// What was staged before the values turned bad is part of what failed.
void CRtu::Values::dropStaged(unsigned turns) {
    turnsBadSeen = turns;
    for (Entry* entry : staged)
        entry->isStaged = false;
    staged.clear();
}

const QVector<PointUpdate>& CRtu::Values::publishStaged() {
    const std::lock_guard<std::mutex> lock(mutex);
    dropIfTurnedBad();
    lastPublished.resize(static_cast<int>(staged.size()));
    PointUpdate* update = lastPublished.data();
    for (Entry* entry : staged) {
        entry->published = entry->staged;
        entry->isStaged = false;
        *update++ = entry->staged;
    }
    anyGood = anyGood || !staged.empty();
    staged.clear();
    return lastPublished;
}

QVector<PointUpdate> CRtu::Values::turnBad() {
    const std::lock_guard<std::mutex> lock(mutex);
    turnsBad.fetch_add(1, std::memory_order_release);
    QVector<PointUpdate> changed;
    if (anyGood) {
        collectBad(statusEntries, changed);
        collectBad(analogEntries, changed);
    }
    anyGood = false;
    return changed;
}

void CRtu::Values::collectBad(Entries& entries, QVector<PointUpdate>& changed) {
    for (auto& [number, entry] : entries.byNumber) {
        if (entry.published.quality != PointQuality::Good)
            continue;
        entry.published.quality = PointQuality::Bad;
        changed << entry.published;
    }
}

QVector<PointUpdate> CRtu::Values::states(const CPointList& all) const {
    const std::lock_guard<std::mutex> lock(mutex);
    QVector<PointUpdate> result;
    for (const StatusPoint* point : all.GetStatusPointList())
        result << stateOf(statusEntries, point->number, false);
    for (const AnalogPoint* point : all.GetAnalogPointList())
        result << stateOf(analogEntries, point->number, true);
    return result;
}

PointUpdate CRtu::Values::stateOf(const Entries& entries, unsigned number, bool analog) {
    const auto found = entries.byNumber.find(number);
    if (found != entries.byNumber.end() && found->second.published.quality != PointQuality::NeverRead)
        return found->second.published;
    PointUpdate neverRead;
    neverRead.analog = analog;
    neverRead.number = number;
    return neverRead;
}

void CRtu::Values::countRequest(const RtuStatus& ended) {
    const std::lock_guard<std::mutex> lock(mutex);
    status.requests += ended.requests;
    status.answers += ended.answers;
    status.timeOuts += ended.timeOuts;
    status.errors += ended.errors;
    if (ended.lastRoundTrip.count() > 0)
        status.lastRoundTrip = ended.lastRoundTrip;
    status.slowestRoundTrip = std::max(status.slowestRoundTrip, ended.slowestRoundTrip);
}

RtuStatus CRtu::Values::figures() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return status;
}
