#pragma once

#include "ScanReply.h"

#include <string>

namespace host {

// "udp://192.168.10.5:5050", "serial:/dev/ttyUSB0?baud=9600&parity=none&stop=1, transmit type data"
std::string wayText(const ControllerLine& line);

// What a station replied, as a line for people: "station 5: answers in 0.45 ms, R0 = 123". Not for one that
// is silent.
std::string replyAsText(const ControllerLine& line, const ScanReply& reply);
// The same as an object of JSON: line, transmit_type, station, result, round_trip_ms, value.
std::string replyAsJson(const ControllerLine& line, const ScanReply& reply);

// What to check when no station answered.
std::string nobodyText(const ControllerLine& line, std::size_t stations);

} // namespace host
