#include "RefusedReads.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

ReadTelegram telegramFor(char media, unsigned first, unsigned last) {
    return {media, first, last - first + 1};
}

ReadTelegram alone(const ElementAddress& element) {
    return {element.media, element.number, 1};
}

} // namespace

std::vector<ReadTelegram> RefusedReads::refused(const ReadTelegram& telegram,
                                                const std::set<unsigned>& wanted) {
    hasRefused = true;
    const char media = telegram.media;
    const unsigned first = *wanted.begin();
    const unsigned last = *wanted.rbegin();
    const bool isConfirmed = doubtful.count({media, first}) > 0;
    for (const unsigned element : wanted)
        doubtful.insert({media, element});
    if (telegram.count == 1 && !isConfirmed)
        return {};
    if (telegram.count == 1) {
        absentElements.insert({media, first});
        for (auto cut = cuts.begin(); cut != cuts.end();)
            cut = contains(cut->second, telegram) ? cuts.erase(cut) : std::next(cut);
        return {};
    }
    if (wanted.size() == 1) // the others were read in vain
        return {telegramFor(media, first, last)};
    const auto middle = std::next(wanted.begin(), static_cast<std::ptrdiff_t>((wanted.size() + 1) / 2));
    cuts[{media, *middle}] = telegram;
    return {telegramFor(media, first, *std::prev(middle)), telegramFor(media, *middle, last)};
}

bool RefusedReads::answered(const ReadTelegram& telegram) {
    const std::size_t before = absentElements.size() + cuts.size();
    const auto isRead = [&](const ReadTelegram& other) { return contains(telegram, other); };
    doubtful.erase(doubtful.lower_bound({telegram.media, telegram.first}),
                   doubtful.upper_bound({telegram.media, telegram.last()}));
    for (auto element = absentElements.begin(); element != absentElements.end();)
        element = isRead(alone(*element)) ? absentElements.erase(element) : std::next(element);
    for (auto cut = cuts.begin(); cut != cuts.end();)
        cut = isRead(cut->second) ? cuts.erase(cut) : std::next(cut);
    return absentElements.size() + cuts.size() < before;
}

bool RefusedReads::isAbsent(const ElementAddress& element) const {
    return absentElements.count(element) > 0;
}

bool RefusedReads::mayJoin(char media, unsigned before, unsigned next) const {
    const ElementAddress behind{media, before + 1};
    const ElementAddress end{media, next};
    const auto cut = cuts.lower_bound(behind);
    if (cut != cuts.end() && !(end < cut->first))
        return false;
    const auto missing = absentElements.lower_bound(behind);
    return missing == absentElements.end() || end < *missing;
}

std::vector<ReadTelegram> RefusedReads::toTryAgain() const {
    std::vector<ReadTelegram> telegrams;
    for (const ElementAddress& element : absentElements)
        telegrams.push_back(alone(element));
    for (const auto& [behind, telegram] : cuts) {
        const bool holdsShorter =
            std::any_of(cuts.begin(), cuts.end(), [&outer = telegram](const auto& other) {
                return !(other.second == outer) && contains(outer, other.second);
            });
        if (!holdsShorter)
            telegrams.push_back(telegram);
    }
    return telegrams;
}

} // namespace host
