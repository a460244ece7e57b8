#include "ValueStore.h"

#include <QDateTime>

#include <algorithm>

namespace host {

ValueStore::ValueStore(const Site& site, std::size_t keptChanges)
    : table(site), capacity(keptChanges), rules(table), states(table.size()) {
    ring.reserve(capacity); // address space; memory only as far as it is filled
}

void ValueStore::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    const PointTable::Block* const block = table.find(channelId, rtuId);
    if (block == nullptr)
        return;
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    const std::lock_guard<std::mutex> lock(mutex);
    if (frozen)
        return;
    for (const PointUpdate& one : updates)
        if (one.number < block->count)
            update(block->first + one.number, one, nowMs);
}

void ValueStore::update(PointIndex index, const PointUpdate& update, qint64 nowMs) {
    PointState& state = states[index];
    const bool isRead = update.quality == PointQuality::Good;
    const bool hasRules = rules.concern(index);
    const PointQuality quality = isRead && hasRules ? rules.qualityOf(index, update.value) : update.quality;
    // A value that is not good does not turn bad.
    if (update.quality == PointQuality::Bad && state.quality != PointQuality::Good)
        return;
    const bool isOther = isRead && state.value != update.value;
    const bool isChange =
        state.quality != quality || (isOther && (!hasRules || rules.isChange(index, update.value)));
    if (isRead) {
        state.value = update.value;
        state.valueTimeMs = update.stamp.isNull() ? nowMs : update.stamp.toMSecsSinceEpoch();
        ++state.readings;
    }
    if (isOther || isChange)
        state.changeTimeMs = isRead ? state.valueTimeMs : nowMs;
    if (!isChange)
        return;
    state.quality = quality;
    if (hasRules)
        rules.noteTold(index, state.value);
    keepChange(index, state);
}

void ValueStore::keepChange(PointIndex index, const PointState& state) {
    if (ring.size() < capacity)
        ring.push_back({index, state});
    else
        ring[changes & (capacity - 1)] = {index, state};
    ++changes;
}

void ValueStore::freeze() {
    const std::lock_guard<std::mutex> lock(mutex);
    frozen = true;
}

PointState ValueStore::state(PointIndex index) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return states[index];
}

std::uint64_t ValueStore::copyStates(PointIndex first, std::size_t count,
                                     std::vector<PointState>& into) const {
    const std::size_t copied = std::min({count, mostAtOnce, table.size() - first});
    into.resize(copied);
    const std::lock_guard<std::mutex> lock(mutex);
    std::copy_n(states.begin() + first, copied, into.begin());
    return changes;
}

std::uint64_t ValueStore::changeCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return changes;
}

std::uint64_t ValueStore::appendChanges(std::uint64_t from, std::size_t most,
                                        std::vector<PointChange>& into) const {
    into.reserve(into.size() + most); // not under the lock
    const std::lock_guard<std::mutex> lock(mutex);
    const std::uint64_t first = std::max(from, changes - ring.size());
    const std::uint64_t end = std::min<std::uint64_t>(changes, first + most);
    for (std::uint64_t number = first; number < end; ++number)
        into.push_back(ring[number & (capacity - 1)]);
    return first;
}

} // namespace host
