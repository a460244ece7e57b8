#pragma once

#include "site/Site.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <map>
#include <mutex>
#include <tuple>
#include <vector>

namespace host {

// A point and where it stands in the site. The site outlives it.
struct PointRef {
    const Channel* channel = nullptr;
    const Rtu* rtu = nullptr;
    const Point* point = nullptr;
};

struct PointState {
    double value = 0;
    qint64 valueTimeMs = 0;  // since 1970; 0: never read
    qint64 changeTimeMs = 0; // of the value or, where it alone has changed, of the quality
    PointQuality quality = PointQuality::NeverRead;

    bool hasValue() const { return valueTimeMs != 0; }
};

struct PointChange {
    std::size_t index = 0; // of the point in points()
    PointState state;
};

// Where the values of a running site arrive, and where the outputs fetch them. Any thread. Keeps the state of
// every configured point and, if asked to, the changes of value or quality in between.
class ValueStore : public HalvexDriverCoreInterface {
public:
    enum class Changes { Ignore, Keep };

    explicit ValueStore(const Site& site, Changes keptChanges = Changes::Ignore);

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    // Not kept: who shows the figures asks the RTUs and channels for them.
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int channelId, const ChannelStatus& status) override;

    // From now on nothing changes any more: a line that is closed in order does not make its values bad.
    void freeze();

    const std::vector<PointRef>& points() const { return refs; }
    std::vector<PointState> states() const;
    // The changes since the last call, oldest first.
    std::vector<PointChange> takeChanges();
    // Changes that were lost because nobody took them in time.
    std::size_t lostChanges() const;

private:
    using Key = std::tuple<int, int, unsigned>; // channel, RTU, point

    void update(std::size_t index, const PointUpdate& update, qint64 nowMs);

    const Changes changes;
    std::vector<PointRef> refs;
    std::map<Key, std::size_t> indexOf;

    mutable std::mutex mutex; // guards what follows
    bool frozen = false;
    std::vector<PointState> current;
    std::vector<PointChange> pending;
    std::size_t lost = 0;
};

} // namespace host
