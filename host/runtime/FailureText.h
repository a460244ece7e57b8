#pragma once

#include "RequestEnd.h"

#include <string>

namespace host {

// Failures, told so that somebody can act on them: what happened and what to check.

// Empty for a request that was answered.
std::string failureReason(const RequestEnd& end);
// What the controller said when it refused: "acknowledge code 1".
std::string refusalText(const RequestEnd& end);

// The primary end where there is no other.
const LinkEnd& linkEndOf(const Channel& channel, bool onSecondary);

// "the controller does not have R17 and R205: ..."
std::string refusalNewsText(const RefusalNews& news);

// "channel 1 "waterworks", RTU 2 "tank" (station 5)"; without the RTU when it is null.
std::string nameOf(const Channel& channel, const Rtu* rtu);

} // namespace host
