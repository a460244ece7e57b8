#include "PointTable.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace host {

namespace {

std::pair<int, int> idsOf(const PointTable::Block& block) {
    return {block.channel->id, block.rtu->id};
}

} // namespace

PointTable::PointTable(const Site& site) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus) {
            const auto first = static_cast<PointIndex>(pointCount);
            allBlocks.push_back({&channel, &rtu, first, static_cast<PointIndex>(rtu.points.size())});
            pointCount += rtu.points.size();
        }
    byIds.resize(allBlocks.size());
    std::iota(byIds.begin(), byIds.end(), std::size_t{0});
    std::sort(byIds.begin(), byIds.end(), [this](std::size_t one, std::size_t other) {
        return idsOf(allBlocks[one]) < idsOf(allBlocks[other]);
    });
}

const PointTable::Block& PointTable::blockOf(PointIndex index) const {
    // Behind a block without points the next one begins at the same index, so the last one is it.
    const auto behind =
        std::upper_bound(allBlocks.begin(), allBlocks.end(), index,
                         [](PointIndex wanted, const Block& block) { return wanted < block.first; });
    return *std::prev(behind);
}

PointRef PointTable::at(PointIndex index) const {
    const Block& block = blockOf(index);
    return {block.channel, block.rtu, &block.rtu->points[index - block.first]};
}

const PointTable::Block* PointTable::find(int channelId, int rtuId) const {
    const std::pair<int, int> wanted(channelId, rtuId);
    const auto found = std::lower_bound(
        byIds.begin(), byIds.end(), wanted,
        [this](std::size_t place, const std::pair<int, int>& ids) { return idsOf(allBlocks[place]) < ids; });
    if (found == byIds.end() || idsOf(allBlocks[*found]) != wanted)
        return nullptr;
    return &allBlocks[*found];
}

} // namespace host
