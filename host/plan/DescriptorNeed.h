#pragma once

#include "site/Site.h"

#include <cstddef>

namespace host {

// What a host has open beside its lines.
struct BesideLines {
    bool hasLogFiles = false; // one for each line
    bool hasCapture = false;
    bool hasControl = false;
};

// Clients of the control socket that each host has room for.
constexpr std::size_t leastControlClients = 16;

// Clients of the Modbus server, of which there are no more at a time.
constexpr std::size_t mostModbusClients = 256;

// How many files and sockets `sbus-host run` has open at once with this site, at most.
std::size_t descriptorsNeeded(const Site& site, const BesideLines& beside);

} // namespace host
