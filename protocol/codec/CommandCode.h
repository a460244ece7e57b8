#pragma once

#include <QtGlobal>

namespace sbus {

// The command byte of a telegram. Requests carry it as a plain number, since they may also carry codes
// that have no telegram.
enum class CommandCode : quint32 {
    ReadCounters = 0,
    ReadFlags = 2,
    ReadInputs = 3,
    ReadOutputs = 5,
    ReadRegisters = 6,
    ReadTimers = 7,
    WriteCounters = 10,
    WriteFlags = 11,
    WriteClock = 12,
    WriteOutputs = 13,
    WriteRegisters = 14,
    WriteTimers = 15,
};

constexpr quint32 toNumber(CommandCode code) {
    return static_cast<quint32>(code);
}

enum class CommandClass {
    None,       // no telegram
    ReadBits,   // the answer holds one bit an element
    ReadWords,  // the answer holds four bytes an element
    WriteBits,  // the body holds byte count, address and element count before the data
    WriteWords, // the body holds byte count and address before the data
    WriteClock, // the body is the data alone
};

CommandClass classOf(quint32 command);
bool isRead(quint32 command);

} // namespace sbus
