#include <HalvexDriverComponent/CPointList.h>

#include "NumberTable.h"

namespace {

// A point that replaces another takes over its object, so that pointers to it stay good.
template <typename Point>
Point* addPoint(QMap<unsigned, Point*>& points, std::map<unsigned, Point>& configured,
                NumberTable<Point>& table, const Point& point) {
    configured.insert_or_assign(point.number, point);
    Point*& slot = points[point.number];
    if (slot)
        *slot = point;
    else
        slot = new Point(point);
    table.enter(point.number, slot, static_cast<std::size_t>(points.size()));
    return slot;
}

template <typename Point>
Point* findPoint(const QMap<unsigned, Point*>& points, const NumberTable<Point>& table, unsigned number) {
    Point* const point = table.find(number);
    return point ? point : points.value(number, nullptr);
}

} // namespace

CPointList::CPointList()
    : statusTable(std::make_unique<NumberTable<StatusPoint>>()),
      analogTable(std::make_unique<NumberTable<AnalogPoint>>()) {}

CPointList::~CPointList() {
    Clear();
}

StatusPoint* CPointList::AddStatusPoint(const StatusPoint& point) {
    return addPoint(statusPoints, configuredStatusPoints, *statusTable, point);
}

AnalogPoint* CPointList::AddAnalogPoint(const AnalogPoint& point) {
    return addPoint(analogPoints, configuredAnalogPoints, *analogTable, point);
}

void CPointList::Clear() {
    qDeleteAll(statusPoints);
    qDeleteAll(analogPoints);
    statusPoints.clear();
    analogPoints.clear();
    configuredStatusPoints.clear();
    configuredAnalogPoints.clear();
    statusTable->clear();
    analogTable->clear();
}

StatusPoint* CPointList::GetStatusPoint(unsigned number) const {
    return findPoint(statusPoints, *statusTable, number);
}

AnalogPoint* CPointList::GetAnalogPoint(unsigned number) const {
    return findPoint(analogPoints, *analogTable, number);
}

void CPointList::RestoreStatusPoints() {
    for (const auto& [number, configured] : configuredStatusPoints) {
        StatusPoint* point = GetStatusPoint(number);
        point->firstAddress = configured.firstAddress;
        point->firstAddressNumber = configured.firstAddressNumber;
        point->secondAddress = configured.secondAddress;
        point->secondAddressNumber = configured.secondAddressNumber;
    }
}

void CPointList::RestoreAnalogPoints() {
    for (const auto& [number, configured] : configuredAnalogPoints) {
        AnalogPoint* point = GetAnalogPoint(number);
        point->address = configured.address;
        point->addressNumber = configured.addressNumber;
    }
}
