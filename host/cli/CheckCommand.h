#pragma once

#include "runtime/ExitStatus.h"

#include <string>

namespace host {

// Tells what is wrong with a site file, or what it will cost.
ExitStatus checkSiteFile(const std::string& path);

// Tells what is wrong with a site file, or which point clients of its Modbus server find where.
ExitStatus tellModbusMap(const std::string& path, bool asCsv);

} // namespace host
