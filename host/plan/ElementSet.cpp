#include "ElementSet.h"

#include <iterator>

namespace host {

ElementSet::ElementSet(const std::vector<ReadTelegram>& telegrams) {
    for (const ReadTelegram& telegram : telegrams)
        lastOf[{telegram.media, telegram.first}] = telegram.last();
}

bool ElementSet::contains(const ElementAddress& element) const {
    const auto behind = lastOf.upper_bound(element);
    if (behind == lastOf.begin())
        return false;
    const auto& [first, last] = *std::prev(behind);
    return first.media == element.media && element.number <= last;
}

} // namespace host
