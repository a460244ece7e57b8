#include "RtuValues.h"

#include <algorithm>

static_assert(sizeof(PointUpdate) == 32, "one for each point of a site, and more in a host");

void CRtu::Values::stageStatusUnready(unsigned number, double value, const CMidTime& stamp, bool first) {
    makeReady(statusEntries, number);
    stageStatus(number, value, stamp, first);
}

void CRtu::Values::stageAnalogUnready(unsigned number, double value, const CMidTime& stamp) {
    makeReady(analogEntries, number);
    stageAnalog(number, value, stamp);
}

void CRtu::Values::makeReady(Entries& entries, unsigned number) {
    dropIfTurnedBad();
    if (entries.table.find(number) == nullptr)
        addEntry(entries, number);
    if (stagedCount == stagedRoom)
        growStaged();
}

void CRtu::Values::addEntry(Entries& entries, unsigned number) {
    const int known =
        entries.areAnalog ? points.GetAnalogPointList().size() : points.GetStatusPointList().size();
    const std::lock_guard<std::mutex> lock(mutex);
    Entry& entry = entries.objects.add();
    entries.table.enter(number, &entry, std::max(entries.objects.size(), static_cast<std::size_t>(known)));
}

// By an eighth: the largest poll of all stages every point of the RTU, and the memory stays.
void CRtu::Values::growStaged() {
    constexpr int atLeast = 16;
    const int room = updates.size() + updates.size() / 8 + atLeast;
    updates.reserve(room);
    updates.resize(room);
    useUpdates();
    if (stagedEntries.size() < stagedRoom) {
        stagedEntries.reserve(stagedRoom);
        stagedEntries.resize(stagedRoom);
    }
}

void CRtu::Values::useUpdates() {
    stagedUpdates = updates.data();
    stagedRoom = static_cast<quint32>(updates.size());
}

// What was staged before the values turned bad is part of what failed.
void CRtu::Values::dropIfTurnedBad() {
    if (!hasTurnedBad())
        return;
    turnsBadSeen = turnsBad.load(std::memory_order_acquire);
    stagedCount = 0;
}

const QVector<PointUpdate>& CRtu::Values::publishStaged() {
    const std::lock_guard<std::mutex> lock(mutex);
    dropIfTurnedBad();
    const PointUpdate* update = stagedUpdates;
    std::for_each_n(stagedEntries.begin(), stagedCount, [&update](Entry* entry) {
        entry->value = update->value;
        entry->stamp = update->stamp;
        entry->quality = update->quality;
        ++update;
    });
    anyGood = anyGood || stagedCount > 0;
    updates.resize(static_cast<int>(stagedCount));
    return updates;
}

void CRtu::Values::endPublishing() {
    // A host that keeps what it was told has the memory now, and need not see it copied.
    if (!updates.isDetached()) {
        const int room = updates.capacity();
        updates = QVector<PointUpdate>();
        updates.reserve(room);
    }
    useUpdates();
    stagedCount = 0;
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
    entries.table.forEach([&](unsigned number, Entry& entry) {
        if (entry.quality != PointQuality::Good)
            return;
        entry.quality = PointQuality::Bad;
        changed << updateOf(entries, number, entry);
    });
}

QVector<PointUpdate> CRtu::Values::states() const {
    const std::lock_guard<std::mutex> lock(mutex);
    QVector<PointUpdate> result;
    for (const StatusPoint* point : points.GetStatusPointList())
        result << stateOf(statusEntries, point->number);
    for (const AnalogPoint* point : points.GetAnalogPointList())
        result << stateOf(analogEntries, point->number);
    return result;
}

PointUpdate CRtu::Values::stateOf(const Entries& entries, unsigned number) {
    static const Entry neverRead;
    const Entry* const entry = entries.table.find(number);
    return updateOf(entries, number, entry != nullptr ? *entry : neverRead);
}

PointUpdate CRtu::Values::updateOf(const Entries& entries, unsigned number, const Entry& entry) {
    return {entries.areAnalog, number, entry.value, entry.stamp, entry.quality};
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
