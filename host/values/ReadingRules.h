#pragma once

#include "PointTable.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <vector>

namespace host {

// What decides, beside the raw number, whether a reading is good and a change: deadbands, and registers of
// format ieee, which may hold no number. Knows the points alone that have either; to ask whether a point does
// is one comparison where none of the site has. The site outlives it. One thread at a time.
class ReadingRules {
public:
    explicit ReadingRules(const PointTable& points);

    bool concern(PointIndex index) const { return !places.empty() && places[index] != none; }

    // Of a point that they concern. Bad when what was read is no number.
    PointQuality qualityOf(PointIndex index, double raw) const;
    // Whether the value is so far from the one that was told last that it has to be told.
    bool isChange(PointIndex index, double raw) const;
    void noteTold(PointIndex index, double raw);

private:
    static constexpr std::uint32_t none = 0xFFFF'FFFF;

    struct Ruled {
        const Point* point = nullptr;
        double told = 0; // the raw number
    };

    std::vector<std::uint32_t> places; // in `ruled`, by index; empty when there is none
    std::vector<Ruled> ruled;
};

} // namespace host
