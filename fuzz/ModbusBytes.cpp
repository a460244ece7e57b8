#include "FuzzInput.h"
#include "services/modbus/ModbusRequest.h"

#include <algorithm>

// What a client may send to the Modbus server. Each whole frame is written down as it came, and a request
// that is not refused stays within its table and has an answer that a frame can hold.
namespace {

using host::ModbusPdu;

constexpr unsigned addressesOfTable = 65'536;
constexpr std::size_t longestPdu = 253;

void checkWrite(const ModbusPdu& pdu, unsigned first, std::size_t count, std::size_t most) {
    require(count > 0 && count <= most && first + count <= addressesOfTable,
            "a write stays within its table");
    const ModbusPdu answer = host::writeAnswer(pdu);
    require(answer.size() == 5 && std::equal(answer.begin(), answer.end(), pdu.begin()),
            "a write is answered with what it began with");
}

void checkRead(const ModbusPdu& pdu, const host::ModbusRead& read) {
    using Table = host::ModbusRead::Table;
    const bool isBits = read.table == Table::Coils || read.table == Table::DiscreteInputs;
    require(read.count > 0 && read.count <= (isBits ? 2'000 : 125) &&
                read.first + read.count <= addressesOfTable,
            "a read stays within its table");
    const ModbusPdu answer = isBits ? host::bitAnswer(pdu, std::vector<bool>(read.count, true))
                                    : host::registerAnswer(pdu, std::vector<std::uint16_t>(read.count));
    require(answer.size() <= longestPdu && answer[0] == pdu[0] && answer[1] == answer.size() - 2,
            "an answer fits a frame and says how long it is");
}

void checkRequest(const ModbusPdu& pdu) {
    const host::ModbusRequest request = host::parseModbusRequest(pdu);
    if (const auto* const fault = std::get_if<host::ModbusFault>(&request))
        require(host::faultAnswer(pdu, *fault) ==
                    ModbusPdu{static_cast<std::uint8_t>(pdu[0] | 0x80U), static_cast<std::uint8_t>(*fault)},
                "an exception names function and fault");
    else if (const auto* const read = std::get_if<host::ModbusRead>(&request))
        checkRead(pdu, *read);
    else if (const auto* const coils = std::get_if<host::CoilWrite>(&request))
        checkWrite(pdu, coils->first, coils->values.size(), 1'968);
    else if (const auto* const registers = std::get_if<host::RegisterWrite>(&request))
        checkWrite(pdu, registers->first, registers->values.size(), 123);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using State = host::CutModbusFrame::State;
    while (size > 0) {
        const host::CutModbusFrame cut = host::cutModbusFrame(data, size);
        if (cut.state != State::Whole)
            break;
        require(cut.size <= size && cut.size <= host::longestModbusFrame, "a frame has an end");
        const std::vector<std::uint8_t> again = bytesOf(cut.frame);
        require(again.size() == cut.size && std::equal(again.begin(), again.end(), data),
                "a frame is written down as it came");
        require(host::cutModbusFrame(data, cut.size - 1).state == State::Incomplete,
                "a frame is whole with its last byte");
        checkRequest(cut.frame.pdu);
        data += cut.size;
        size -= cut.size;
    }
    return 0;
}
