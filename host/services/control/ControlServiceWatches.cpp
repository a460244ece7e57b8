#include "ControlService.h"

#include <QDateTime>

#include <algorithm>

// What those are told who watch: the current values first, then each change that is not in them.

namespace host {

namespace {

constexpr std::size_t changesAtOnce = 4'096;

} // namespace

bool ControlService::tellCurrentValues(ClientId client, std::size_t most) {
    const auto found = watches.find(client);
    if (found == watches.end())
        return false;
    Watch& watch = found->second;
    const PointTable& points = store.points();
    while (watch.nextCurrent < points.size() && most > 0) {
        const PointTable::Block& block = points.blockOf(watch.nextCurrent);
        if (!watch.blocks[points.placeOf(block)]) {
            watch.nextCurrent = block.end();
            continue;
        }
        const std::size_t wanted = std::min<std::size_t>(most, block.end() - watch.nextCurrent);
        const std::uint64_t firstChange = store.copyStates(watch.nextCurrent, wanted, states);
        for (PointState& state : states) {
            if (state.quality == PointQuality::NeverRead)
                state.changeTimeMs = QDateTime::currentMSecsSinceEpoch();
            settings.send(client, changeLine(points.at(watch.nextCurrent++), state));
        }
        watch.pieces.push_back({watch.nextCurrent, firstChange});
        most -= states.size();
    }
    return watch.nextCurrent < points.size();
}

void ControlService::tellChanges() {
    if (watches.empty())
        return;
    do {
        reader.read(changes, changesAtOnce);
        if (reader.takeMissed() > 0)
            for (auto& [client, watch] : watches) {
                watch.nextCurrent = 0;
                watch.pieces.clear();
            }
        const std::uint64_t first = reader.position() - changes.size();
        for (std::size_t i = 0; i < changes.size(); ++i)
            tellChange(first + i, changes[i]);
    } while (changes.size() == changesAtOnce);
    for (auto& [client, watch] : watches)
        while (!watch.pieces.empty() && watch.pieces.front().firstChange <= reader.position())
            watch.pieces.pop_front();
}

void ControlService::tellChange(std::uint64_t number, const PointChange& change) {
    const PointTable& points = store.points();
    const std::size_t block = points.placeOf(points.blockOf(change.index));
    QByteArray text; // one for all: they share its bytes
    for (const auto& [client, watch] : watches) {
        if (!isToBeTold(watch, block, change.index, number))
            continue;
        if (text.isEmpty())
            text = changeLine(points.at(change.index), change.state);
        settings.send(client, text);
    }
}

bool ControlService::isToBeTold(const Watch& watch, std::size_t block, PointIndex index,
                                std::uint64_t number) {
    if (!watch.blocks[block] || index >= watch.nextCurrent)
        return false;
    const auto piece = std::upper_bound(watch.pieces.begin(), watch.pieces.end(), index,
                                        [](PointIndex wanted, const Piece& one) { return wanted < one.end; });
    return piece == watch.pieces.end() || number >= piece->firstChange;
}

QByteArray ControlService::changeLine(const PointRef& ref, const PointState& state) {
    lineText = "{\"change\":";
    changeText->append(lineText, ref, state);
    lineText += '}';
    return QByteArray(lineText.data(), static_cast<int>(lineText.size()));
}

} // namespace host
