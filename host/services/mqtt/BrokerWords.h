#pragma once

#include <string>

// What a broker or the library means, told so that somebody can act on it. Pure.
namespace host {

// Why a broker refused a connection, by the code of its answer in MQTT 5 or 3.1.1.
std::string connectionRefusal(int code, bool isV5);
// Why it refused a message, by the reason code of MQTT 5.
std::string messageRefusal(int reason);
// Why it ended a connection, likewise.
std::string disconnection(int reason);

} // namespace host
