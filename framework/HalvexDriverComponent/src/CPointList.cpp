#include <HalvexDriverComponent/CPointList.h>

namespace {

// A point that replaces another takes over its object, so that pointers to it stay good.
template <typename Point>
Point* addPoint(QMap<unsigned, Point*>& points, std::map<unsigned, Point>& configured, const Point& point) {
    configured.insert_or_assign(point.number, point);
    Point*& slot = points[point.number];
    if (slot)
        *slot = point;
    else
        slot = new Point(point);
    return slot;
}

} // namespace

CPointList::CPointList() = default;

CPointList::~CPointList() {
    Clear();
}

StatusPoint* CPointList::AddStatusPoint(const StatusPoint& point) {
    return addPoint(statusPoints, configuredStatusPoints, point);
}

AnalogPoint* CPointList::AddAnalogPoint(const AnalogPoint& point) {
    return addPoint(analogPoints, configuredAnalogPoints, point);
}

void CPointList::Clear() {
    qDeleteAll(statusPoints);
    qDeleteAll(analogPoints);
    statusPoints.clear();
    analogPoints.clear();
    configuredStatusPoints.clear();
    configuredAnalogPoints.clear();
}

StatusPoint* CPointList::GetStatusPoint(unsigned number) const {
    return statusPoints.value(number, nullptr);
}

AnalogPoint* CPointList::GetAnalogPoint(unsigned number) const {
    return analogPoints.value(number, nullptr);
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
