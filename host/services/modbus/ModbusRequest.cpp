#include "ModbusRequest.h"

#include <optional>

namespace host {

namespace {

enum Function : std::uint8_t {
    ReadCoils = 1,
    ReadDiscreteInputs = 2,
    ReadHoldingRegisters = 3,
    ReadInputRegisters = 4,
    WriteCoil = 5,
    WriteRegister = 6,
    WriteCoils = 15,
    WriteRegisters = 16,
};
constexpr std::uint8_t exceptionBit = 0x80;

constexpr unsigned addressesOfTable = 65'536;
constexpr unsigned mostBitsRead = 2'000;
constexpr unsigned mostRegistersRead = 125;
constexpr unsigned mostBitsWritten = 1'968;
constexpr unsigned mostRegistersWritten = 123;
constexpr std::size_t plainSize = 5; // function, address, and a count or a value
constexpr std::size_t listHead = 6;  // the same, and how many bytes follow
constexpr unsigned coilOn = 0xFF00;

unsigned wordAt(const ModbusPdu& pdu, std::size_t at) {
    return static_cast<unsigned>(pdu[at]) << 8 | pdu[at + 1];
}

std::uint16_t registerAt(const ModbusPdu& pdu, std::size_t at) {
    return static_cast<std::uint16_t>(wordAt(pdu, at));
}

// The fault of a first address and a count, in the order in which they are looked at.
std::optional<ModbusFault> rangeFault(unsigned first, unsigned count, unsigned mostAtOnce) {
    if (count == 0 || count > mostAtOnce)
        return ModbusFault::IllegalValue;
    if (first + count > addressesOfTable)
        return ModbusFault::IllegalAddress;
    return std::nullopt;
}

ModbusRequest parseRead(const ModbusPdu& pdu, ModbusRead::Table table, unsigned mostAtOnce) {
    if (pdu.size() != plainSize)
        return ModbusFault::IllegalValue;
    const ModbusRead read{table, wordAt(pdu, 1), wordAt(pdu, 3)};
    if (const auto fault = rangeFault(read.first, read.count, mostAtOnce))
        return *fault;
    return read;
}

ModbusRequest parseCoil(const ModbusPdu& pdu) {
    if (pdu.size() != plainSize)
        return ModbusFault::IllegalValue;
    const unsigned value = wordAt(pdu, 3);
    if (value != 0 && value != coilOn)
        return ModbusFault::IllegalValue;
    return CoilWrite{wordAt(pdu, 1), {value == coilOn}};
}

ModbusRequest parseRegister(const ModbusPdu& pdu) {
    if (pdu.size() != plainSize)
        return ModbusFault::IllegalValue;
    return RegisterWrite{wordAt(pdu, 1), {registerAt(pdu, 3)}};
}

// Of a list of values that take so many bytes.
std::optional<ModbusFault> listFault(const ModbusPdu& pdu, unsigned mostAtOnce, std::size_t bytes) {
    if (pdu[listHead - 1] != bytes || pdu.size() != listHead + bytes)
        return ModbusFault::IllegalValue;
    return rangeFault(wordAt(pdu, 1), wordAt(pdu, 3), mostAtOnce);
}

ModbusRequest parseCoils(const ModbusPdu& pdu) {
    if (pdu.size() < listHead)
        return ModbusFault::IllegalValue;
    const unsigned count = wordAt(pdu, 3);
    if (const auto fault = listFault(pdu, mostBitsWritten, (count + 7) / 8))
        return *fault;
    CoilWrite write{wordAt(pdu, 1), {}};
    for (unsigned i = 0; i < count; ++i)
        write.values.push_back((pdu[listHead + i / 8] >> i % 8 & 1) != 0);
    return write;
}

ModbusRequest parseRegisters(const ModbusPdu& pdu) {
    if (pdu.size() < listHead)
        return ModbusFault::IllegalValue;
    const unsigned count = wordAt(pdu, 3);
    if (const auto fault = listFault(pdu, mostRegistersWritten, std::size_t{2} * count))
        return *fault;
    RegisterWrite write{wordAt(pdu, 1), {}};
    for (unsigned i = 0; i < count; ++i)
        write.values.push_back(registerAt(pdu, listHead + std::size_t{2} * i));
    return write;
}

ModbusPdu readAnswer(const ModbusPdu& request, std::size_t bytes) {
    ModbusPdu answer(2 + bytes, 0);
    answer[0] = request[0];
    answer[1] = static_cast<std::uint8_t>(bytes);
    return answer;
}

} // namespace

ModbusRequest parseModbusRequest(const ModbusPdu& pdu) {
    using Table = ModbusRead::Table;
    switch (pdu.front()) {
    case ReadCoils:
        return parseRead(pdu, Table::Coils, mostBitsRead);
    case ReadDiscreteInputs:
        return parseRead(pdu, Table::DiscreteInputs, mostBitsRead);
    case ReadHoldingRegisters:
        return parseRead(pdu, Table::HoldingRegisters, mostRegistersRead);
    case ReadInputRegisters:
        return parseRead(pdu, Table::InputRegisters, mostRegistersRead);
    case WriteCoil:
        return parseCoil(pdu);
    case WriteRegister:
        return parseRegister(pdu);
    case WriteCoils:
        return parseCoils(pdu);
    case WriteRegisters:
        return parseRegisters(pdu);
    default:
        return ModbusFault::IllegalFunction;
    }
}

ModbusPdu bitAnswer(const ModbusPdu& request, const std::vector<bool>& values) {
    ModbusPdu answer = readAnswer(request, (values.size() + 7) / 8);
    for (std::size_t i = 0; i < values.size(); ++i)
        if (values[i])
            answer[2 + i / 8] = static_cast<std::uint8_t>(answer[2 + i / 8] | 1U << i % 8);
    return answer;
}

ModbusPdu registerAnswer(const ModbusPdu& request, const std::vector<std::uint16_t>& values) {
    ModbusPdu answer = readAnswer(request, 2 * values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        answer[2 + 2 * i] = static_cast<std::uint8_t>(values[i] >> 8);
        answer[3 + 2 * i] = static_cast<std::uint8_t>(values[i]);
    }
    return answer;
}

// Function, address, and the value or the count of the request.
ModbusPdu writeAnswer(const ModbusPdu& request) {
    return {request.begin(), request.begin() + plainSize};
}

ModbusPdu faultAnswer(const ModbusPdu& request, ModbusFault fault) {
    return {static_cast<std::uint8_t>(request[0] | exceptionBit), static_cast<std::uint8_t>(fault)};
}

} // namespace host
