#include "StationRanges.h"

#include "Number.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

const std::string remedy = "write station numbers from 0 to 254 as 0..253, 5, or 1,4..9";

// False when `text` is no station and no range of them.
bool addRange(std::set<unsigned>& stations, const std::string& text) {
    const std::size_t dots = text.find("..");
    const std::optional<unsigned> first = parseNumber(text.substr(0, dots), 0, highestAnsweringStation);
    const std::optional<unsigned> last =
        dots == std::string::npos ? first : parseNumber(text.substr(dots + 2), 0, highestAnsweringStation);
    if (!first || !last || *first > *last)
        return false;
    for (unsigned station = *first; station <= *last; ++station)
        stations.insert(station);
    return true;
}

} // namespace

ParsedStations parseStations(const std::string& text) {
    std::set<unsigned> stations;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t stop = std::min(text.find(',', start), text.size());
        const std::string part = text.substr(start, stop - start);
        if (!addRange(stations, part))
            return {{}, "\"" + part + "\" is no station and no range of stations", remedy};
        start = stop + 1;
    }
    return {{stations.begin(), stations.end()}, {}, {}};
}

} // namespace host
