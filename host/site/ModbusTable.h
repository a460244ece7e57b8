#pragma once

#include "ModbusSettings.h"
#include "TomlTable.h"

#include <optional>

namespace host {

// Reads the table [modbus] of a site file. Nothing without it, and where it names no address to listen on.
std::optional<ModbusSettings> readModbusTable(TomlTable& root, const std::string& file, Findings& findings);

} // namespace host
