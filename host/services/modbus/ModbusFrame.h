#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Telegrams of Modbus TCP: a head of seven bytes, then function and data. Bytes and numbers, nothing else.
namespace host {

using ModbusPdu = std::vector<std::uint8_t>; // function and data: 1 to 253 bytes

struct ModbusFrame {
    std::uint16_t transaction = 0; // the client's number, which goes back with the answer
    std::uint8_t unit = 0;
    ModbusPdu pdu;
};

constexpr std::size_t longestModbusFrame = 260;

struct CutModbusFrame {
    enum class State {
        Incomplete, // as far as there are bytes they can be the beginning of one
        Whole,
        Rubbish, // no frame of Modbus; nothing tells where the next one would begin
    };
    State state = State::Incomplete;
    std::size_t size = 0; // of a whole one: its bytes
    ModbusFrame frame;    // likewise
};

// The frame at the beginning of `bytes`.
CutModbusFrame cutModbusFrame(const std::uint8_t* bytes, std::size_t count);

std::vector<std::uint8_t> bytesOf(const ModbusFrame& frame);

} // namespace host
