#pragma once

#include "OneShotSite.h"

namespace host {

// Why no station can answer the question of a scan within the time-out at this baud rate; empty when one can.
std::string scanTimeoutFault(const ControllerLine& line);

// How long it takes to ask so many stations when none of them answers.
std::chrono::milliseconds silentScanTime(const ControllerLine& line, std::size_t stations);

} // namespace host
