#pragma once

#include "ModbusRequest.h"
#include "plan/ModbusMap.h"
#include "values/ValueStore.h"

#include <optional>

namespace host {

// Answers read requests from the values of a running site. Those of one request are as they were at one
// moment, unless their points lie too far apart in the site for one copy (ValueStore::mostAtOnce).
// Map, settings and store outlive it. One thread.
class ModbusReader {
public:
    ModbusReader(const ModbusMap& modbusMap, const ModbusSettings& modbusSettings, const ValueStore& store)
        : map(modbusMap), settings(modbusSettings), values(store) {}

    // `pdu` is what `read` was parsed from.
    ModbusPdu answer(unsigned unit, const ModbusPdu& pdu, const ModbusRead& read);

private:
    // A bit or a register of the answer.
    struct Place {
        const MappedPoint* point = nullptr;
        bool isQuality = false;
        PointState state;
    };

    Place placeOf(unsigned unit, ModbusRead::Table table, unsigned address) const;
    std::optional<ModbusFault> findPlaces(unsigned unit, const ModbusRead& read);
    // Whether no analog value is cut in two: two halves of two moments would make a third value.
    bool areValuesWhole(const ModbusRead& read) const;
    void readStates();
    bool areAllGood() const;
    ModbusPdu bits(const ModbusPdu& pdu) const;
    ModbusPdu registers(const ModbusPdu& pdu, const ModbusRead& read) const;

    const ModbusMap& map;
    const ModbusSettings& settings;
    const ValueStore& values;

    std::vector<Place> places;      // of the request in hand
    std::vector<PointState> copied; // kept for its memory
};

} // namespace host
