#include "PointMarks.h"

#include "HostRuntime.h"
#include "plan/ElementSet.h"

namespace host {

template <typename Condition>
void PointMarks::mark(PointQuality quality, Condition isMeant) const {
    QVector<PointUpdate> updates;
    for (const Point& point : rtu.points) {
        if (!point.isPolled || !isMeant(point))
            continue;
        PointUpdate update;
        update.analog = point.kind == PointKind::Analog;
        update.number = numberOf(rtu, point);
        update.quality = quality;
        updates << update;
    }
    if (!updates.isEmpty())
        core.publishPoints(channel.id, rtu.id, updates);
}

void PointMarks::turnBad(const std::vector<ReadTelegram>& telegrams) const {
    if (telegrams.empty())
        return;
    const ElementSet elements(telegrams);
    mark(PointQuality::Bad, [&](const Point& point) { return elements.contains(point.address); });
}

void PointMarks::turnAllBad() const {
    mark(PointQuality::Bad, [](const Point&) { return true; });
}

void PointMarks::refuse(const ElementAddress& element) const {
    mark(PointQuality::Refused, [&](const Point& point) { return point.address == element; });
}

} // namespace host
