#include <HalvexDriverComponent/CPointList.h>

#include "PointStores.h"

CPointList::CPointList() : stores(std::make_unique<Stores>()) {}

CPointList::~CPointList() = default;

StatusPoint* CPointList::AddStatusPoint(const StatusPoint& point) {
    return statusPoints[point.number] = stores->status.put(point);
}

AnalogPoint* CPointList::AddAnalogPoint(const AnalogPoint& point) {
    return analogPoints[point.number] = stores->analog.put(point);
}

void CPointList::Clear() {
    statusPoints.clear();
    analogPoints.clear();
    stores->status.clear();
    stores->analog.clear();
}

StatusPoint* CPointList::GetStatusPoint(unsigned number) const {
    return stores->status.find(number);
}

AnalogPoint* CPointList::GetAnalogPoint(unsigned number) const {
    return stores->analog.find(number);
}

void CPointList::RestoreStatusPoints() {
    stores->status.restoreAddresses();
}

void CPointList::RestoreAnalogPoints() {
    stores->analog.restoreAddresses();
}
