#pragma once

#include <string>

namespace host {

// Whether this system can set a serial line to so many baud. The list is the one by which the link sets its
// device, so what is known here is not refused when the line is opened.
bool isKnownBaudRate(unsigned baud);
// "4800 and 9600", the known rates below and above `baud`; one alone at the ends of the list.
std::string nearestBaudRates(unsigned baud);

} // namespace host
