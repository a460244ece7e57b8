#include "PointChanges.h"

#include <algorithm>

namespace host {

void PointChanges::read(std::vector<PointChange>& into, std::size_t most) {
    reader.read(piece, most);
    into.insert(into.end(), piece.begin(), piece.end());
}

void PointChanges::readCurrent(std::vector<PointChange>& changes, std::vector<PointChange>& current,
                               std::size_t most) {
    const std::size_t left = store.points().size() - nextCurrent;
    const auto first = static_cast<PointIndex>(nextCurrent);
    const std::uint64_t firstChange = store.copyStates(first, std::min(most, left), states);
    readUpTo(firstChange, changes);
    for (std::size_t i = 0; i < states.size(); ++i)
        current.push_back({static_cast<PointIndex>(nextCurrent + i), states[i]});
    nextCurrent += states.size();
}

void PointChanges::readUpTo(std::uint64_t end, std::vector<PointChange>& into) {
    while (reader.position() < end) {
        reader.read(piece, static_cast<std::size_t>(end - reader.position()));
        // After an overrun the reader goes on with the oldest kept change, which may be behind the end: then
        // all that was asked for is gone.
        into.insert(into.end(), piece.begin(), piece.end());
        if (piece.empty())
            return;
    }
}

} // namespace host
