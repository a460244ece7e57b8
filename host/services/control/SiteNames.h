#pragma once

#include "values/PointTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

// Finds what a name means: "rtu/point" and "rtu", with "channel/" in front where several channels have an RTU
// of that name. The points outlive it. Any thread.
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

    explicit SiteNames(const PointTable& pointTable);

    Match<PointRef> findPoint(const std::string& name) const;
    Match<RtuRef> findRtu(const std::string& name) const;
    const std::vector<RtuRef>& rtus() const { return rtuRefs; }
    // The shortest name that means this and nothing else.
    std::string nameOf(const RtuRef& rtu) const;
    std::string nameOf(const PointRef& point) const;

private:
    // Names by their hashes, short and full ones. Sixteen bytes a point, where the names themselves would
    // take hundreds.
    struct Entry {
        std::uint32_t hash = 0;
        PointIndex place = 0; // among the RTUs or points
    };
    using Index = std::vector<Entry>; // by hash, then by place

    template <typename Ref>
    std::vector<std::size_t> placesOf(const Index& index, const std::string& name) const;
    template <typename Ref>
    Match<Ref> find(const Index& index, const std::string& name, const std::string& what) const;
    template <typename Ref>
    std::string nearNames(const Index& index, const std::string& name) const;
    template <typename Ref>
    std::string clearName(const Index& index, const Ref& ref) const;
    template <typename Ref>
    Ref refAt(std::size_t place) const;
    template <typename Ref>
    Index makeIndex(std::size_t count) const;

    const PointTable& points;
    std::vector<RtuRef> rtuRefs;
    Index rtuIndex;
    Index pointIndex;
};

} // namespace host
