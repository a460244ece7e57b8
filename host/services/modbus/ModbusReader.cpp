#include "ModbusReader.h"

#include "RegisterWords.h"

#include <algorithm>

namespace host {

namespace {

using Table = ModbusRead::Table;

bool isRegister(Table table) {
    return table == Table::HoldingRegisters || table == Table::InputRegisters;
}

bool isGood(const MappedPoint& point, const PointState& state) {
    return state.quality == PointQuality::Good &&
           (point.point->kind == PointKind::Status || fitsRegisters(*point.point, state.value));
}

} // namespace

ModbusPdu ModbusReader::answer(unsigned unit, const ModbusPdu& pdu, const ModbusRead& read) {
    if (const std::optional<ModbusFault> fault = findPlaces(unit, read))
        return faultAnswer(pdu, *fault);
    readStates();
    if (settings.quality == ModbusSettings::Quality::Exception && !areAllGood())
        return faultAnswer(pdu, ModbusFault::TargetSilent);
    return isRegister(read.table) ? registers(pdu, read) : bits(pdu);
}

ModbusReader::Place ModbusReader::placeOf(unsigned unit, Table table, unsigned address) const {
    if (isRegister(table))
        return {map.analogAt(unit, address), false, {}};
    const bool hasBits = settings.quality == ModbusSettings::Quality::Bits;
    if (hasBits && table == Table::DiscreteInputs && address >= analogQuality)
        return {map.analogAt(unit, address - analogQuality), true, {}};
    if (hasBits && table == Table::DiscreteInputs && address >= statusQuality)
        return {map.statusAt(unit, address - statusQuality), true, {}};
    const MappedPoint* const point = map.statusAt(unit, address);
    if (table == Table::Coils && point != nullptr && !isModbusWritable(*point->point))
        return {};
    return {point, false, {}};
}

std::optional<ModbusFault> ModbusReader::findPlaces(unsigned unit, const ModbusRead& read) {
    if (!map.hasUnit(unit))
        return ModbusFault::PathUnavailable;
    places.clear();
    for (unsigned i = 0; i < read.count; ++i) {
        places.push_back(placeOf(unit, read.table, read.first + i));
        if (places.back().point == nullptr)
            return ModbusFault::IllegalAddress;
    }
    return areValuesWhole(read) ? std::nullopt : std::optional(ModbusFault::IllegalAddress);
}

bool ModbusReader::areValuesWhole(const ModbusRead& read) const {
    return !isRegister(read.table) ||
           (places.front().point->address == read.first &&
            places.back().point->address + registersOfValue == read.first + read.count);
}

void ModbusReader::readStates() {
    const auto [lowest, highest] =
        std::minmax_element(places.begin(), places.end(), [](const Place& one, const Place& other) {
            return one.point->index < other.point->index;
        });
    const PointIndex first = lowest->point->index;
    const std::size_t span = highest->point->index - first + std::size_t{1};
    if (span > ValueStore::mostAtOnce) {
        for (Place& place : places)
            place.state = values.state(place.point->index);
        return;
    }
    values.copyStates(first, span, copied);
    for (Place& place : places)
        place.state = copied[place.point->index - first];
}

bool ModbusReader::areAllGood() const {
    return std::all_of(places.begin(), places.end(),
                       [](const Place& place) { return isGood(*place.point, place.state); });
}

ModbusPdu ModbusReader::bits(const ModbusPdu& pdu) const {
    std::vector<bool> answered;
    for (const Place& place : places)
        answered.push_back(place.isQuality ? isGood(*place.point, place.state) : place.state.value != 0);
    return bitAnswer(pdu, answered);
}

ModbusPdu ModbusReader::registers(const ModbusPdu& pdu, const ModbusRead& read) const {
    std::vector<std::uint16_t> answered;
    for (unsigned i = 0; i < read.count; ++i) {
        const MappedPoint& point = *places[i].point;
        const RegisterPair pair = registersOf(*point.point, places[i].state.value, settings.wordOrder);
        answered.push_back(pair[read.first + i - point.address]);
    }
    return registerAnswer(pdu, answered);
}

} // namespace host
