#pragma once

#include "PointStore.h"

#include <HalvexDriverComponent/CPointList.h>

// The address texts with which a point was added.
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

// The points of both kinds. What looks a point up for every value that is put includes this, so that the
// compiler has the search in its place.
struct CPointList::Stores {
    PointStore<StatusPoint, StatusAddresses> status;
    PointStore<AnalogPoint, AnalogAddresses> analog;
};
