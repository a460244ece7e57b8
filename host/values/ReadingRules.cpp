#include "ReadingRules.h"

#include "site/PointValue.h"

#include <cmath>

namespace host {

namespace {

// The rounding of a difference that is just the deadband.
constexpr double roundingShare = 1e-9;

double deadbandOf(const Point& point) {
    return point.engineering ? point.engineering->deadband : 0;
}

bool needsRules(const Point& point) {
    return point.isIeee || deadbandOf(point) > 0;
}

} // namespace

ReadingRules::ReadingRules(const PointTable& points) {
    for (const PointTable::Block& block : points.blocks())
        for (PointIndex i = 0; i < block.count; ++i) {
            const Point& point = block.rtu->points[i];
            if (!needsRules(point))
                continue;
            if (places.empty())
                places.assign(points.size(), none);
            places[block.first + i] = static_cast<std::uint32_t>(ruled.size());
            ruled.push_back({&point, 0});
        }
}

PointQuality ReadingRules::qualityOf(PointIndex index, double raw) const {
    return isNumber(*ruled[places[index]].point, raw) ? PointQuality::Good : PointQuality::Bad;
}

bool ReadingRules::isChange(PointIndex index, double raw) const {
    const Ruled& one = ruled[places[index]];
    if (raw == one.told)
        return false;
    const double distance = std::fabs(valueOf(*one.point, raw) - valueOf(*one.point, one.told));
    // Of what is no number there is no distance.
    return !(distance < deadbandOf(*one.point) * (1 - roundingShare));
}

void ReadingRules::noteTold(PointIndex index, double raw) {
    ruled[places[index]].told = raw;
}

} // namespace host
