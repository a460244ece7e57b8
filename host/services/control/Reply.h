#pragma once

#include "ControlledHost.h"
#include "SiteNames.h"

#include <HalvexDriverComponent/Halvex.h>

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>

#include <optional>
#include <string>

// The lines that a control client gets, each a JSON object. docs/control-socket.md shows them all.
namespace host {

// Why a request got no other answer; "code" in the reply.
enum class ReplyFault {
    Malformed,  // the line is no request
    Unknown,    // it names what is not there or cannot do it
    Busy,       // too many requests, clients or watches
    Ending,     // the host ends
    Permission, // the client may not do that
};

// How one command ended.
struct CommandOutcome {
    std::optional<Halvex::DriverErrorResult> result; // nothing: the host refused it, or has no result yet
    bool isRefusedByController = false;              // understood and refused, which is no number of its own
    std::string why;                                 // the host refused it
    bool isLeftOut = false;                          // since it is not possible; it counts for nothing
};

bool isSuccess(const CommandOutcome& outcome);
// Whether at least one is a success, and all that are not left out are.
bool isAllDone(const std::vector<CommandOutcome>& outcomes);
// "success", "time-out", "refused", "channel error", ...
const char* resultText(const CommandOutcome& outcome);
QJsonObject toJson(const CommandOutcome& outcome);

// All without the line end.
QByteArray errorReply(const QJsonValue& id, ReplyFault code, const std::string& text);
// {"id":..., "ok":..., parts}
QByteArray reply(const QJsonValue& id, bool ok, QJsonObject parts);

// {"channels":[...], "services":{...}}
QJsonObject statusParts(const HostFigures& figures);

} // namespace host
