#pragma once

#include "PointTable.h"
#include "ReadingRules.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <cstdint>
#include <mutex>
#include <vector>

namespace host {

struct PointState {
    double value = 0;        // the raw number
    qint64 valueTimeMs = 0;  // since 1970; 0: never read
    qint64 changeTimeMs = 0; // of the value or, where it alone has changed, of the quality
    PointQuality quality = PointQuality::NeverRead;
    std::uint32_t readings = 0; // how often it was read good; starts again behind the highest number

    bool hasValue() const { return valueTimeMs != 0; }
};
static_assert(sizeof(PointState) == 32, "there is one for each point and each kept change");

struct PointChange {
    PointIndex index = 0;
    PointState state; // behind the change
};

// The one place where the values of a running site are kept: the state of every configured point, and the
// last changes of them. Values arrive on the channels' threads; readers on any other copy what they need, a
// piece at a time, so that none holds a channel up for longer than such a copy takes, some 50 microseconds.
//
// Values are kept as the driver reads them, which are raw numbers (PointValue.h). A register of format ieee
// that holds no number is bad. A reading within the deadband around what was told last is no change; the
// state has it all the same.
//
// Each change has a sequence number, from 0 on. They are kept in a ring: the newest takes the place of the
// oldest, whether that was read or not. A ChangeReader tells who reads too slowly how many it has missed.
//
// A point's number in the driver's records is its position in its RTU; higher ones are hidden points, whose
// values are not kept.
class ValueStore : public HalvexDriverCoreInterface {
public:
    // Half a second of 500,000 changes a second, ten times the period in which the console and the control
    // socket read; 10 MB once it has been filled. A power of two.
    static constexpr std::size_t mostKeptChanges = 262'144;
    // States or changes that are copied under one lock.
    static constexpr std::size_t mostAtOnce = 4'096;

    explicit ValueStore(const Site& site, std::size_t keptChanges = mostKeptChanges);

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    // Not kept: who shows the figures asks the RTUs and channels for them.
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}

    // From now on nothing changes any more: a line that is closed in order does not make its values bad.
    void freeze();

    const PointTable& points() const { return table; }
    PointState state(PointIndex index) const;
    // Replaces `into` with the states of at most `count` points from `first` on, mostAtOnce at most, as they
    // are at one moment. Returns the sequence number of the first change that is not in them.
    std::uint64_t copyStates(PointIndex first, std::size_t count, std::vector<PointState>& into) const;
    // So far, which is the sequence number of the next one.
    std::uint64_t changeCount() const;

private:
    friend class ChangeReader;

    void update(PointIndex index, const PointUpdate& update, qint64 nowMs);
    void keepChange(PointIndex index, const PointState& state);
    // Appends at most `most` changes from number `from` on, or from the oldest one that is kept. Returns the
    // number of the first one.
    std::uint64_t appendChanges(std::uint64_t from, std::size_t most, std::vector<PointChange>& into) const;

    const PointTable table;
    const std::size_t capacity; // of the ring

    mutable std::mutex mutex; // guards what follows
    bool frozen = false;
    ReadingRules rules;
    std::vector<PointState> states;
    std::vector<PointChange> ring; // change n at place n modulo the capacity; grows up to that
    std::uint64_t changes = 0;
};

} // namespace host
