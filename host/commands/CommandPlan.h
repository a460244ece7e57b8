#pragma once

#include "Command.h"
#include "site/Site.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// Why an RTU cannot take this command, told so that somebody can act on it: channel, RTU, point, what is
// wrong, what to check. Empty when it can.
std::string refusalOf(const Channel& channel, const Rtu& rtu, const CommandAction& action);

// The driver's commands that carry out an action which is not refused, in their order: one for each, but for
// a list of set points, which is cut so that every value lands at its own element. Points are named by their
// numbers in the driver's records.
std::vector<CommandAction> planDriverCalls(const Rtu& rtu, const CommandAction& action);

// Null when there is none.
const Point* findPoint(const Rtu& rtu, unsigned id);

} // namespace host
