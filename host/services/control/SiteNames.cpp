#include "SiteNames.h"

#include <algorithm>
#include <cctype>
#include <set>

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

// The shortest name that means this and nothing else.
template <typename Ref, typename Index>
std::string clearName(const Ref& ref, const Index& index) {
    return index.at(shortName(ref)).size() == 1 ? shortName(ref) : fullName(ref);
}

// The names that somebody may have meant, the nearest first: "\"a\", \"b\"".
template <typename Ref, typename Index>
std::string nearNames(const std::vector<Ref>& refs, const Index& index, const std::string& name) {
    if (name.size() > longestName)
        return {};
    const std::string given = lowered(name);
    std::set<std::pair<std::size_t, std::string>> found;
    for (const Ref& ref : refs) {
        const std::size_t far = distanceTo(ref, given);
        if (far <= farthestDistance)
            found.emplace(far, clearName(ref, index));
        if (found.size() > mostNearNames)
            found.erase(std::prev(found.end()));
    }
    std::string text;
    for (const auto& [far, candidate] : found)
        text += (text.empty() ? "" : ", ") + ('"' + candidate + '"');
    return text;
}

template <typename Ref, typename Index>
SiteNames::Match<Ref> find(const std::vector<Ref>& refs, const Index& index, const std::string& name,
                           const std::string& what) {
    const auto found = index.find(name);
    if (found == index.end()) {
        const std::string near = nearNames(refs, index, name);
        return {{},
                "no " + what + " \"" + name.substr(0, longestName) + "\"" +
                    (near.empty() ? "" : "; near it: " + near)};
    }
    if (found->second.size() == 1)
        return {refs[found->second.front()], {}};
    std::string meanings;
    for (std::size_t i = 0; i < std::min(found->second.size(), mostNearNames); ++i)
        meanings += (i == 0 ? "\"" : ", \"") + fullName(refs[found->second[i]]) + '"';
    return {{},
            "there are " + std::to_string(found->second.size()) + " of \"" + name + "\": write " + meanings};
}

template <typename Refs, typename Index>
void fill(const Refs& refs, Index& index) {
    for (std::size_t i = 0; i < refs.size(); ++i) {
        index[shortName(refs[i])].push_back(i);
        index[fullName(refs[i])].push_back(i);
    }
}

} // namespace

SiteNames::SiteNames(const Site& site) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus) {
            rtuRefs.push_back({&channel, &rtu});
            for (const Point& point : rtu.points)
                pointRefs.push_back({&channel, &rtu, &point});
        }
    fill(rtuRefs, rtuIndex);
    fill(pointRefs, pointIndex);
}

SiteNames::Match<PointRef> SiteNames::findPoint(const std::string& name) const {
    return find(pointRefs, pointIndex, name, "point");
}

SiteNames::Match<SiteNames::RtuRef> SiteNames::findRtu(const std::string& name) const {
    return find(rtuRefs, rtuIndex, name, "RTU");
}

std::string SiteNames::nameOf(const RtuRef& rtu) const {
    return clearName(rtu, rtuIndex);
}

std::string SiteNames::nameOf(const PointRef& point) const {
    return clearName(point, pointIndex);
}

} // namespace host
