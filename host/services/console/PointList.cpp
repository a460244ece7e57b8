#include "PointList.h"

#include <algorithm>
#include <cctype>

namespace host {

namespace {

bool isSameLetter(char one, char other) {
    return std::tolower(static_cast<unsigned char>(one)) == std::tolower(static_cast<unsigned char>(other));
}

} // namespace

bool holdsText(const std::string& text, const std::string& part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), isSameLetter) != text.end() ||
           part.empty();
}

PointList::PointList(const ValueStore& valueStore) : store(valueStore) {
    arrange({});
}

std::vector<PointState> PointList::copyStates() const {
    std::vector<PointState> all;
    std::vector<PointState> piece;
    all.reserve(store.points().size());
    while (all.size() < store.points().size()) {
        const std::size_t left = store.points().size() - all.size();
        store.copyStates(static_cast<PointIndex>(all.size()), left, piece);
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

void PointList::arrange(const Arrangement& arrangement) {
    const bool needsStates = arrangement.isNotGoodOnly || arrangement.isByAge;
    const std::vector<PointState> states = needsStates ? copyStates() : std::vector<PointState>();
    listed.clear();
    for (const PointTable::Block& block : store.points().blocks()) {
        if (!holdsText(block.rtu->name, arrangement.rtu))
            continue;
        for (PointIndex point = block.first; point < block.end(); ++point)
            if (!arrangement.isNotGoodOnly || states[point].quality != PointQuality::Good)
                listed.push_back(point);
    }
    if (arrangement.isByAge)
        std::stable_sort(listed.begin(), listed.end(), [&states](PointIndex one, PointIndex other) {
            return states[one].valueTimeMs < states[other].valueTimeMs;
        });
}

std::size_t PointList::positionOf(PointIndex point) const {
    const auto exact = std::find(listed.begin(), listed.end(), point);
    const auto found = exact != listed.end() ? exact
                                             : std::find_if(listed.begin(), listed.end(),
                                                            [point](PointIndex one) { return one > point; });
    return static_cast<std::size_t>(found - listed.begin());
}

std::optional<std::size_t> PointList::find(const std::string& text, std::size_t start,
                                           bool isBackward) const {
    for (std::size_t i = 0; i < listed.size(); ++i) {
        const std::size_t step = isBackward ? listed.size() - i : i;
        const std::size_t position = (start + step) % listed.size();
        const PointRef ref = store.points().at(listed[position]);
        if (holdsText(ref.point->name, text) || holdsText(toText(ref.point->address), text) ||
            holdsText(ref.rtu->name, text) ||
            (ref.point->description && holdsText(*ref.point->description, text)))
            return position;
    }
    return std::nullopt;
}

} // namespace host
