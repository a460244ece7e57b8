#pragma once

#include "values/ChangeReader.h"

#include <vector>

namespace host {

// The changes of a store for a service that tells the current values of all points, too, when somebody has
// just begun to listen or changes were missed. What it gives is in order for each point: a current value
// never stands before a change that it holds already. One thread; the store outlives it.
class PointChanges {
public:
    explicit PointChanges(const ValueStore& valueStore) : store(valueStore), reader(valueStore) {}

    // Appends what has changed since the last call, at most so many.
    void read(std::vector<PointChange>& into, std::size_t most);

    // The current values are to be told, all from the first one on.
    void beginCurrent() { nextCurrent = 0; }
    bool isTellingCurrent() const { return nextCurrent < store.points().size(); }
    // Appends the next at most `most` current values to `current`, and before that to `changes` what has
    // changed until then.
    void readCurrent(std::vector<PointChange>& changes, std::vector<PointChange>& current, std::size_t most);

    // Changes that were overwritten before they were read, since the last call. They are made up for by
    // telling the current values.
    std::uint64_t takeMissed() { return reader.takeMissed(); }

private:
    void readUpTo(std::uint64_t end, std::vector<PointChange>& into);

    const ValueStore& store;
    ChangeReader reader;
    std::size_t nextCurrent = 0;
    std::vector<PointChange> piece; // kept for its memory
    std::vector<PointState> states; // likewise
};

} // namespace host
