#pragma once

#include "ModbusMap.h"

#include <string>

namespace host {

// What `check --modbus-map` prints: a line for each table that a point lies in. References are those that
// many programs know addresses by: 100001 is the first discrete input, 400001 the first holding register.
std::string modbusMapTable(const ModbusMap& map, const ModbusSettings& settings); // for people
std::string modbusMapCsv(const ModbusMap& map, const ModbusSettings& settings);   // for other programs

} // namespace host
