#pragma once

#include "site/Site.h"

namespace host {

// Whether a line of the frame trace says that the controller understood the request and refused it.
bool isRefusal(const std::string& protocolError);

// Whether the answer that begins with these bytes of the frame trace ("B5 02 00 01 ") is a negative
// acknowledge. On a serial line it is shorter than what a read waits for, and the driver takes it for an
// answer that was cut off.
bool isRefusedRead(TransmitType type, const std::string& hexBytes);

// Whether such an answer to a write is a negative acknowledge. In Data Mode the driver looks at the start and
// the checksum of an acknowledge alone, and takes a refusal for success.
bool isRefusedWrite(TransmitType type, const std::string& hexBytes);

// A failure in the driver's log, told so that somebody can act on it: what happened, what to check. `rtu` is
// null for the channel itself; `protocolError` is the last one of the RTU in the frame trace; `onSecondary`
// tells that the secondary end is the one in use.
std::string failureReason(const Channel& channel, const Rtu* rtu, const std::string& logText,
                          const std::string& protocolError, bool onSecondary = false);

// "channel 1 "waterworks", RTU 2 "tank" (station 5)"
std::string nameOf(const Channel& channel, const Rtu* rtu);

} // namespace host
