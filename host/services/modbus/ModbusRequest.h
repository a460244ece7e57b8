#pragma once

#include "ModbusFrame.h"

#include <variant>

// What a client asks by function and data, and the answers. Bytes and numbers, nothing else.
namespace host {

// The codes of exceptions.
enum class ModbusFault : std::uint8_t {
    IllegalFunction = 0x01,
    IllegalAddress = 0x02, // also a count that does not fit the address
    IllegalValue = 0x03,   // also a count that no request can have
    DeviceFailure = 0x04,
    DeviceBusy = 0x06,
    PathUnavailable = 0x0A,
    TargetSilent = 0x0B,
};

// A request stays within the 65,536 addresses of its table.
struct ModbusRead {
    enum class Table { Coils, DiscreteInputs, HoldingRegisters, InputRegisters };
    Table table = Table::Coils;
    unsigned first = 0;
    unsigned count = 0;
};

struct CoilWrite {
    unsigned first = 0;
    std::vector<bool> values;
};

struct RegisterWrite {
    unsigned first = 0;
    std::vector<std::uint16_t> values;
};

using ModbusRequest = std::variant<ModbusFault, ModbusRead, CoilWrite, RegisterWrite>;

// Functions 1 to 6, 15 and 16; the fault for all others and for what is wrong in itself.
ModbusRequest parseModbusRequest(const ModbusPdu& pdu);

// The answers to `request`, which is one without a fault, but for faultAnswer().
ModbusPdu bitAnswer(const ModbusPdu& request, const std::vector<bool>& values);
ModbusPdu registerAnswer(const ModbusPdu& request, const std::vector<std::uint16_t>& values);
ModbusPdu writeAnswer(const ModbusPdu& request);
ModbusPdu faultAnswer(const ModbusPdu& request, ModbusFault fault);

} // namespace host
