#pragma once

#include "ModbusRequest.h"
#include "commands/Command.h"
#include "plan/ModbusMap.h"

#include <optional>

// What write requests ask of the site, and how the ends of commands are told to their clients.
namespace host {

// Coils that one request can write: each is a telegram of its own.
constexpr std::size_t mostCoilsAtOnce = 256;

// Commands that carry out a write: one for each coil, one for each RTU whose registers are written. None
// where there is a fault: nothing of such a request is sent.
struct ModbusOrders {
    std::optional<ModbusFault> fault;
    std::vector<Command> commands;
};

ModbusOrders ordersOf(const ModbusMap& map, unsigned unit, const CoilWrite& write);
ModbusOrders ordersOf(const ModbusMap& map, unsigned unit, const RegisterWrite& write,
                      ModbusSettings::WordOrder order);

// Nothing for a command that the controller has carried out.
std::optional<ModbusFault> faultOf(const CommandEnd& end);

} // namespace host
