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

// By what stands behind station and command code.
enum class CommandClass {
    None,       // no telegram
    ReadBits,   // count and address; the answer holds one bit an element
    ReadWords,  // count and address; the answer holds four bytes an element
    WriteBits,  // byte count, address and element count, then the data
    WriteWords, // byte count and address, then the data
    WriteClock, // the data at once; on Ethernet without station and command code before it
};

CommandClass classOf(quint32 command);
bool isRead(quint32 command);

} // namespace sbus
