#pragma once

#include "site/Site.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// The place of a point among all points of a site, from 0 on: RTU by RTU in the order of the file.
using PointIndex = std::uint32_t;

// A point and where it stands in the site. The site outlives it.
struct PointRef {
    const Channel* channel = nullptr;
    const Rtu* rtu = nullptr;
    const Point* point = nullptr;
};

// All points of a site, numbered without gaps. Keeps nothing of a point but its number: the site, which must
// stay as it is, outlives the table. Never changes: any thread.
class PointTable {
public:
    // The points of one RTU: `count` of them from `first` on.
    struct Block {
        const Channel* channel = nullptr;
        const Rtu* rtu = nullptr;
        PointIndex first = 0;
        PointIndex count = 0;

        PointIndex end() const { return first + count; }
    };

    explicit PointTable(const Site& site);

    std::size_t size() const { return pointCount; }
    // Of an index below size().
    const Block& blockOf(PointIndex index) const;
    PointRef at(PointIndex index) const;
    // Of one of blocks() among them.
    std::size_t placeOf(const Block& block) const {
        return static_cast<std::size_t>(&block - allBlocks.data());
    }

    // One for each RTU, in the order of the file.
    const std::vector<Block>& blocks() const { return allBlocks; }
    // Null when there is no such RTU.
    const Block* find(int channelId, int rtuId) const;

private:
    std::size_t pointCount = 0;
    std::vector<Block> allBlocks;
    std::vector<std::size_t> byIds; // places in allBlocks, by the ids of channel and RTU
};

} // namespace host
