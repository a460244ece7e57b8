#pragma once

#include "Command.h"
#include "plan/WritePlan.h"

class CReply;
class CRtu;

namespace host {

// What the driver is called with for one of planWordWrites' commands.
CommandAction actionOf(const WordCommand& writes);

// Calls the driver's operation for `action`. Its result: a Halvex::DriverErrorResult; with Success the reply
// is taken over.
int callDriver(CRtu& rtu, const CommandAction& action, CReply* reply);

} // namespace host
