#pragma once

#include "values/ValueStore.h"

#include <map>
#include <string>
#include <vector>

namespace host {

// Finds what a name means: "rtu/point" and "rtu", with "channel/" in front where several channels have an RTU
// of that name. The site outlives it. Any thread.
class SiteNames {
public:
    template <typename Found>
    struct Match {
        Found found;
        std::string fault; // why nothing was found: what there is near it, or what else it may mean
    };
    struct RtuRef {
        const Channel* channel = nullptr;
        const Rtu* rtu = nullptr;
    };

    explicit SiteNames(const Site& site);

    Match<PointRef> findPoint(const std::string& name) const;
    Match<RtuRef> findRtu(const std::string& name) const;
    const std::vector<RtuRef>& rtus() const { return rtuRefs; }
    // The shortest name that means this and nothing else.
    std::string nameOf(const RtuRef& rtu) const;
    std::string nameOf(const PointRef& point) const;

private:
    using Index = std::map<std::string, std::vector<std::size_t>>; // by short and by full name

    std::vector<RtuRef> rtuRefs;
    std::vector<PointRef> pointRefs;
    Index rtuIndex;
    Index pointIndex;
};

} // namespace host
