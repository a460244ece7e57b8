#include <HalvexDriverComponent/CPointList.h>

#include "PointStore.h"

namespace {

struct StatusAddresses {
    StatusAddresses() = default;
    explicit StatusAddresses(const StatusPoint& point)
        : first(point.firstAddress), firstNumber(point.firstAddressNumber), second(point.secondAddress),
          secondNumber(point.secondAddressNumber) {}

    void giveTo(StatusPoint& point) const {
        point.firstAddress = first;
        point.firstAddressNumber = firstNumber;
        point.secondAddress = second;
        point.secondAddressNumber = secondNumber;
    }

    QString first;
    QString firstNumber;
    QString second;
    QString secondNumber;
};

struct AnalogAddresses {
    AnalogAddresses() = default;
    explicit AnalogAddresses(const AnalogPoint& point)
        : address(point.address), number(point.addressNumber) {}

    void giveTo(AnalogPoint& point) const {
        point.address = address;
        point.addressNumber = number;
    }

    QString address;
    QString number;
};

} // namespace

struct CPointList::Stores {
    PointStore<StatusPoint, StatusAddresses> status;
    PointStore<AnalogPoint, AnalogAddresses> analog;
};

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
