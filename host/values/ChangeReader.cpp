#include "ChangeReader.h"

#include <algorithm>
#include <utility>

namespace host {

void ChangeReader::read(std::vector<PointChange>& into, std::size_t most) {
    into.clear();
    while (into.size() < most) {
        const std::size_t before = into.size();
        const std::uint64_t first =
            store.appendChanges(next, std::min(most - before, ValueStore::mostAtOnce), into);
        missed += first - next;
        next = first + (into.size() - before);
        if (into.size() == before)
            return;
    }
}

std::uint64_t ChangeReader::takeMissed() {
    return std::exchange(missed, 0);
}

} // namespace host
