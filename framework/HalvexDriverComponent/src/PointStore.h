#pragma once

#include "NumberTable.h"
#include "StableArray.h"

// The points of one kind, each with the address texts with which it was added (`Addresses`, which are made of
// a point and can be given back to it). The texts share their memory with the point's until the driver
// changes these.
template <typename Point, typename Addresses>
class PointStore {
public:
    // A point that replaces another takes over its object, so that pointers to it stay good.
    Point* put(const Point& point) {
        Slot* slot = table.find(point.number);
        if (slot == nullptr) {
            slot = &slots.add();
            table.enter(point.number, slot, slots.size());
        }
        slot->point = point;
        slot->configured = Addresses(point);
        return &slot->point;
    }

    // Null when there is none.
    Point* find(unsigned number) const {
        Slot* const slot = table.find(number);
        return slot != nullptr ? &slot->point : nullptr;
    }

    void restoreAddresses() {
        slots.forEach([](Slot& slot) { slot.configured.giveTo(slot.point); });
    }

    void clear() {
        table.clear();
        slots.clear();
    }

private:
    struct Slot {
        Point point;
        Addresses configured;
    };

    StableArray<Slot> slots;
    NumberTable<Slot> table; // each value that is put looks its point up
};
