#include "ModbusFrame.h"

namespace host {

namespace {

constexpr std::size_t lengthEnd = 6;   // of the head: transaction, protocol and length, two bytes each
constexpr std::size_t headSize = 7;    // with the unit
constexpr unsigned shortestLength = 2; // unit and function
constexpr unsigned longestLength = longestModbusFrame - lengthEnd;

unsigned wordAt(const std::uint8_t* bytes) {
    return static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
}

void appendWord(std::vector<std::uint8_t>& bytes, std::size_t word) {
    bytes.push_back(static_cast<std::uint8_t>(word >> 8));
    bytes.push_back(static_cast<std::uint8_t>(word));
}

} // namespace

CutModbusFrame cutModbusFrame(const std::uint8_t* bytes, std::size_t count) {
    CutModbusFrame cut;
    if ((count > 2 && bytes[2] != 0) || (count > 3 && bytes[3] != 0)) { // protocol 0 is Modbus
        cut.state = CutModbusFrame::State::Rubbish;
        return cut;
    }
    if (count < lengthEnd)
        return cut;
    const unsigned length = wordAt(bytes + 4);
    if (length < shortestLength || length > longestLength) {
        cut.state = CutModbusFrame::State::Rubbish;
        return cut;
    }
    cut.size = lengthEnd + length;
    if (count < cut.size)
        return cut;
    cut.state = CutModbusFrame::State::Whole;
    cut.frame.transaction = static_cast<std::uint16_t>(wordAt(bytes));
    cut.frame.unit = bytes[lengthEnd];
    cut.frame.pdu.assign(bytes + headSize, bytes + cut.size);
    return cut;
}

std::vector<std::uint8_t> bytesOf(const ModbusFrame& frame) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(headSize + frame.pdu.size());
    appendWord(bytes, frame.transaction);
    appendWord(bytes, 0);
    appendWord(bytes, 1 + frame.pdu.size());
    bytes.push_back(frame.unit);
    bytes.insert(bytes.end(), frame.pdu.begin(), frame.pdu.end());
    return bytes;
}

} // namespace host
