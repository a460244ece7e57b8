#include "ValueStore.h"

#include <QDateTime>

namespace host {

namespace {

// What waits for a slow reader of the output at most; beyond, the oldest changes make room.
constexpr std::size_t mostPendingChanges = 200'000;

} // namespace

ValueStore::ValueStore(const Site& site, Changes keptChanges) : changes(keptChanges) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            for (const Point& point : rtu.points) {
                indexOf.emplace(Key{channel.id, rtu.id, point.id}, refs.size());
                refs.push_back({&channel, &rtu, &point});
            }
    current.resize(refs.size());
}

void ValueStore::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    const std::lock_guard<std::mutex> lock(mutex);
    if (frozen)
        return;
    for (const PointUpdate& one : updates) {
        const auto found = indexOf.find(Key{channelId, rtuId, one.number});
        if (found != indexOf.end()) // hidden points are not there
            update(found->second, one, nowMs);
    }
}

void ValueStore::publishRtuStatus(int, int, const RtuStatus&) {}

void ValueStore::publishChannelStatus(int, const ChannelStatus&) {}

void ValueStore::update(std::size_t index, const PointUpdate& update, qint64 nowMs) {
    PointState& state = current[index];
    const bool qualityChanged = state.quality != update.quality;
    const bool valueChanged = update.quality == PointQuality::Good && state.value != update.value;
    if (update.quality == PointQuality::Good) {
        state.value = update.value;
        state.valueTimeMs = update.stamp.isNull() ? nowMs : update.stamp.toMSecsSinceEpoch();
    }
    if (!qualityChanged && !valueChanged)
        return;
    state.quality = update.quality;
    state.changeTimeMs = update.quality == PointQuality::Good ? state.valueTimeMs : nowMs;
    if (changes == Changes::Ignore)
        return;
    if (pending.size() >= mostPendingChanges) {
        constexpr std::size_t batch = mostPendingChanges / 4; // not one by one: each removal moves the rest
        pending.erase(pending.begin(), pending.begin() + batch);
        lost += batch;
    }
    pending.push_back({index, state});
}

void ValueStore::freeze() {
    const std::lock_guard<std::mutex> lock(mutex);
    frozen = true;
}

std::vector<PointState> ValueStore::states() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return current;
}

std::vector<PointChange> ValueStore::takeChanges() {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<PointChange> taken;
    taken.swap(pending);
    return taken;
}

std::size_t ValueStore::lostChanges() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return lost;
}

} // namespace host
