#include "PutCallRecorder.h"

#include "SBusRtu.h"
#include "VirtualSlots.h"

namespace {

PutCallRecorder* recorder = nullptr;

void recordStatus(CRtu*, bool simulated, StatusPoint* point, char value, unsigned status,
                  const CMidTime& stamp, bool first) {
    recorder->status.push_back({point->number, value, first});
    recorder->remarks.push_back({simulated, status, stamp});
}

void recordAnalog(CRtu*, bool simulated, AnalogPoint* point, double value, unsigned status,
                  const CMidTime& stamp) {
    recorder->analog.push_back({point->number, value});
    recorder->remarks.push_back({simulated, status, stamp});
}

void** tableOf(const SBusRtu* rtu) {
    void** table = nullptr;
    std::memcpy(&table, static_cast<const void*>(rtu), sizeof table);
    return table;
}

void setTable(SBusRtu* rtu, void** table) {
    std::memcpy(static_cast<void*>(rtu), &table, sizeof table);
}

// Before the operations stand the object's offset and its type information.
constexpr std::size_t entriesBefore = 2;

} // namespace

void PrintTo(const StatusPut& put, std::ostream* out) {
    *out << "point " << put.number << " = " << put.value << (put.first ? " (first)" : " (second)");
}

void PrintTo(const AnalogPut& put, std::ostream* out) {
    *out << "point " << put.number << " = " << put.value;
}

PutCallRecorder::PutCallRecorder(SBusRtu* watchedRtu) : rtu(watchedRtu), ownTable(tableOf(watchedRtu)) {
    using PutStatus = void (CRtu::*)(bool, StatusPoint*, char, unsigned, const CMidTime&, bool);
    using PutAnalog = void (CRtu::*)(bool, AnalogPoint*, double, unsigned, const CMidTime&);
    const std::size_t size = slotOf(&SBusRtu::publishAnalogValues) + 1;
    table.assign(ownTable - entriesBefore, ownTable + size);
    void** const operations = table.data() + entriesBefore;
    operations[slotOf(static_cast<PutStatus>(&CRtu::PutStatusPoint))] =
        reinterpret_cast<void*>(&recordStatus);
    operations[slotOf(static_cast<PutAnalog>(&CRtu::PutAnalogPoint))] =
        reinterpret_cast<void*>(&recordAnalog);
    recorder = this;
    setTable(rtu, operations);
}

PutCallRecorder::~PutCallRecorder() {
    setTable(rtu, ownTable);
    recorder = nullptr;
}
