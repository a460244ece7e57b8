#pragma once

#include <HalvexDriverComponent/CMidTime.h>

#include <ostream>
#include <vector>

class SBusRtu;

struct StatusPut {
    unsigned number;
    int value;
    bool first;
};
inline bool operator==(const StatusPut& a, const StatusPut& b) {
    return a.number == b.number && a.value == b.value && a.first == b.first;
}
void PrintTo(const StatusPut& put, std::ostream* out);

struct AnalogPut {
    unsigned number;
    double value;
};
inline bool operator==(const AnalogPut& a, const AnalogPut& b) {
    return a.number == b.number && a.value == b.value;
}
void PrintTo(const AnalogPut& put, std::ostream* out);

// What every put has beside its point and value.
struct PutRemarks {
    bool simulated;
    unsigned status;
    CMidTime stamp;
};

// Notes each call of an RTU's PutStatusPoint and PutAnalogPoint in their place, while it lives: the base
// merges what is put for one point, so that its published values do not tell how often, and with what, it
// was called. It gives the object a table of virtual operations of its own, a copy but for those two. One
// recorder at a time.
class PutCallRecorder {
public:
    explicit PutCallRecorder(SBusRtu* watchedRtu);
    PutCallRecorder(const PutCallRecorder&) = delete;
    PutCallRecorder& operator=(const PutCallRecorder&) = delete;
    ~PutCallRecorder();

    std::vector<StatusPut> status;
    std::vector<AnalogPut> analog;
    std::vector<PutRemarks> remarks; // of both, in order

private:
    SBusRtu* const rtu;
    void** const ownTable;
    std::vector<void*> table;
};
