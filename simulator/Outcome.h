#pragma once

#include "Memory.h"
#include "Request.h"

namespace sim {

// How a controller took a request.
enum class Verdict { Data, Done, RangeError, UnknownCommand, Malformed };

struct Outcome {
    Verdict verdict;
    Bytes payload; // of Data
};

// Obeys one request. Anything but Data and Done changed nothing.
Outcome obey(Memory& memory, const Request& request);

// Week, weekday, year, month, day, hour, minute and second as BCD, each within its range.
bool isClockSetting(const Bytes& data);

} // namespace sim
