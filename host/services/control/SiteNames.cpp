#include "SiteNames.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <set>
#include <tuple>

namespace host {

namespace {

constexpr std::size_t mostNearNames = 3;
constexpr std::size_t farthestDistance = 3; // changed, missing or surplus letters
constexpr std::size_t longestName = 200;    // beyond, nobody mistyped it

std::string shortName(const SiteNames::RtuRef& ref) {
    return ref.rtu->name;
}

std::string shortName(const PointRef& ref) {
    return ref.rtu->name + '/' + ref.point->name;
}

template <typename Ref>
std::string fullName(const Ref& ref) {
    return ref.channel->name + '/' + shortName(ref);
}

// What is behind the last stroke.
std::string lastPart(const std::string& name) {
    const std::size_t stroke = name.rfind('/');
    return stroke == std::string::npos ? name : name.substr(stroke + 1);
}

std::string lowered(std::string text) {
    for (char& letter : text)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

// How many letters must be changed, added or taken out to make one text of the other; farthestDistance + 1
// stands for anything farther.
std::size_t distance(const std::string& one, const std::string& other) {
    const std::size_t tooFar = farthestDistance + 1;
    if (std::max(one.size(), other.size()) - std::min(one.size(), other.size()) > farthestDistance)
        return tooFar;
    std::vector<std::size_t> row(other.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        std::size_t least = i;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const std::size_t changed = diagonal + (one[i - 1] == other[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
            least = std::min(least, row[j]);
        }
        if (least > farthestDistance)
            return tooFar;
    }
    return std::min(row.back(), tooFar);
}

// How far a name is from that of `ref`, however that may be written.
template <typename Ref>
std::size_t distanceTo(const Ref& ref, const std::string& given) {
    const std::string known = lowered(shortName(ref));
    const std::size_t far = std::min(distance(given, known), distance(given, lowered(fullName(ref))));
    // The right point under a wrong or missing RTU is near as well, though not as near. Of a short name no
    // letter may differ: it would be near to any other.
    const std::string givenLast = lastPart(given);
    const std::size_t farLast = distance(givenLast, lastPart(known));
    return farLast <= givenLast.size() / 4 ? std::min(far, farLast + 1) : far;
}

std::uint32_t hashOf(const std::string& name) {
    return static_cast<std::uint32_t>(std::hash<std::string>()(name));
}

} // namespace

SiteNames::SiteNames(const PointTable& pointTable) : points(pointTable) {
    for (const PointTable::Block& block : points.blocks())
        rtuRefs.push_back({block.channel, block.rtu});
    rtuIndex = makeIndex<RtuRef>(rtuRefs.size());
    pointIndex = makeIndex<PointRef>(points.size());
}

template <>
SiteNames::RtuRef SiteNames::refAt(std::size_t place) const {
    return rtuRefs[place];
}

template <>
PointRef SiteNames::refAt(std::size_t place) const {
    return points.at(static_cast<PointIndex>(place));
}

template <typename Ref>
SiteNames::Index SiteNames::makeIndex(std::size_t count) const {
    Index index;
    index.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        const Ref ref = refAt<Ref>(i);
        index.push_back({hashOf(shortName(ref)), static_cast<PointIndex>(i)});
        index.push_back({hashOf(fullName(ref)), static_cast<PointIndex>(i)});
    }
    std::sort(index.begin(), index.end(), [](const Entry& one, const Entry& other) {
        return std::tie(one.hash, one.place) < std::tie(other.hash, other.place);
    });
    return index;
}

// In the order of the site; other names may have the same hash.
template <typename Ref>
std::vector<std::size_t> SiteNames::placesOf(const Index& index, const std::string& name) const {
    const std::uint32_t hash = hashOf(name);
    std::vector<std::size_t> places;
    auto entry = std::lower_bound(index.begin(), index.end(), hash,
                                  [](const Entry& one, std::uint32_t wanted) { return one.hash < wanted; });
    for (; entry != index.end() && entry->hash == hash; ++entry) {
        const Ref ref = refAt<Ref>(entry->place);
        if (shortName(ref) == name || fullName(ref) == name)
            places.push_back(entry->place);
    }
    return places;
}

// The shortest name that means this and nothing else.
template <typename Ref>
std::string SiteNames::clearName(const Index& index, const Ref& ref) const {
    const std::string name = shortName(ref);
    return placesOf<Ref>(index, name).size() == 1 ? name : fullName(ref);
}

// The names that somebody may have meant, the nearest first: "\"a\", \"b\"".
template <typename Ref>
std::string SiteNames::nearNames(const Index& index, const std::string& name) const {
    if (name.size() > longestName)
        return {};
    const std::string given = lowered(name);
    std::set<std::pair<std::size_t, std::string>> found;
    const std::size_t count = index.size() / 2; // a short and a full name each
    for (std::size_t i = 0; i < count; ++i) {
        const Ref ref = refAt<Ref>(i);
        const std::size_t far = distanceTo(ref, given);
        if (far <= farthestDistance)
            found.emplace(far, clearName(index, ref));
        if (found.size() > mostNearNames)
            found.erase(std::prev(found.end()));
    }
    std::string text;
    for (const auto& [far, candidate] : found)
        text += (text.empty() ? "" : ", ") + ('"' + candidate + '"');
    return text;
}

template <typename Ref>
SiteNames::Match<Ref> SiteNames::find(const Index& index, const std::string& name,
                                      const std::string& what) const {
    const std::vector<std::size_t> found = placesOf<Ref>(index, name);
    if (found.empty()) {
        const std::string near = nearNames<Ref>(index, name);
        return {{},
                "no " + what + " \"" + name.substr(0, longestName) + "\"" +
                    (near.empty() ? "" : "; near it: " + near)};
    }
    if (found.size() == 1)
        return {refAt<Ref>(found.front()), {}};
    std::string meanings;
    for (std::size_t i = 0; i < std::min(found.size(), mostNearNames); ++i)
        meanings += (i == 0 ? "\"" : ", \"") + fullName(refAt<Ref>(found[i])) + '"';
    return {{}, "there are " + std::to_string(found.size()) + " of \"" + name + "\": write " + meanings};
}

SiteNames::Match<PointRef> SiteNames::findPoint(const std::string& name) const {
    return find<PointRef>(pointIndex, name, "point");
}

SiteNames::Match<SiteNames::RtuRef> SiteNames::findRtu(const std::string& name) const {
    return find<RtuRef>(rtuIndex, name, "RTU");
}

std::string SiteNames::nameOf(const RtuRef& rtu) const {
    return clearName(rtuIndex, rtu);
}

std::string SiteNames::nameOf(const PointRef& point) const {
    return clearName(pointIndex, point);
}

} // namespace host
