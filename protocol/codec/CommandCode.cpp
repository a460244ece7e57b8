#include "CommandCode.h"

namespace sbus {

CommandClass classOf(quint32 command) {
    switch (static_cast<CommandCode>(command)) {
    case CommandCode::ReadCounters:
    case CommandCode::ReadRegisters:
    case CommandCode::ReadTimers:
        return CommandClass::ReadWords;
    case CommandCode::ReadFlags:
    case CommandCode::ReadInputs:
    case CommandCode::ReadOutputs:
        return CommandClass::ReadBits;
    case CommandCode::WriteCounters:
    case CommandCode::WriteRegisters:
    case CommandCode::WriteTimers:
        return CommandClass::WriteWords;
    case CommandCode::WriteFlags:
    case CommandCode::WriteOutputs:
        return CommandClass::WriteBits;
    case CommandCode::WriteClock:
        return CommandClass::WriteClock;
    }
    return CommandClass::None;
}

bool isRead(quint32 command) {
    const CommandClass commandClass = classOf(command);
    return commandClass == CommandClass::ReadBits || commandClass == CommandClass::ReadWords;
}

} // namespace sbus
