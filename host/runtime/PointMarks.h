#pragma once

#include "plan/ReadTelegram.h"
#include "site/Site.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

namespace host {

// Marks points of one RTU as bad or refused, towards the host's core. All of it outlives this.
class PointMarks {
public:
    PointMarks(const Channel& pointsChannel, const Rtu& pointsRtu, HalvexDriverCoreInterface& hostCore)
        : channel(pointsChannel), rtu(pointsRtu), core(hostCore) {}

    // Those that `telegrams` should have read.
    void turnBad(const std::vector<ReadTelegram>& telegrams) const;
    void turnAllBad() const;
    void refuse(const ElementAddress& element) const;

private:
    template <typename Condition>
    void mark(PointQuality quality, Condition isMeant) const;

    const Channel& channel;
    const Rtu& rtu;
    HalvexDriverCoreInterface& core;
};

} // namespace host
