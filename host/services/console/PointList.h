#pragma once

#include "values/ValueStore.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// Which points of a site are listed, and in which order.
struct Arrangement {
    std::string rtu; // those of the RTUs whose names hold this text; empty: of all
    bool isNotGoodOnly = false;
    bool isByAge =
        false; // those read longest ago first, never read ones before them; else as in the site file
};

// The list that an arrangement makes of a site's points. The store outlives it. One thread.
class PointList {
public:
    explicit PointList(const ValueStore& valueStore);

    // Lists them anew, by the states of this moment.
    void arrange(const Arrangement& arrangement);
    std::size_t size() const { return listed.size(); }
    PointIndex at(std::size_t position) const { return listed[position]; }
    // Where a point is, or the one behind which it would be.
    std::size_t positionOf(PointIndex point) const;

    // The position from `start` on, round to the one before it, of a point whose name, address or RTU holds
    // `text`, in whatever letters.
    std::optional<std::size_t> find(const std::string& text, std::size_t start, bool isBackward) const;

private:
    std::vector<PointState> copyStates() const;

    const ValueStore& store;
    std::vector<PointIndex> listed;
};

// Whether `text` holds `part`, in whatever letters of the Latin alphabet.
bool holdsText(const std::string& text, const std::string& part);

} // namespace host
