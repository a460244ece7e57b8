#include "PointCommand.h"

#include "site/NumberText.h"
#include "site/PointValue.h"

namespace host {

void addCommand(CommandRequest& request, const PointRef& ref, double value) {
    const Point& point = *ref.point;
    request.command.channelId = ref.channel->id;
    request.command.rtuId = ref.rtu->id;
    if (!ref.rtu->enabled)
        request.refusal = "the RTU is disabled in the site file";
    else if (point.kind == PointKind::Status && value != 0 && value != 1)
        request.refusal = "it is a status point: it takes 0 or 1";
    else if (point.kind == PointKind::Analog && !rawOf(point, value).fault.empty())
        request.refusal = numberText(value) + ": " + rawOf(point, value).fault;
    if (point.kind == PointKind::Status)
        request.command.action = SwitchPoint{point.id, value != 0};
    else
        request.command.action = SetPoint{point.id, value};
}

} // namespace host
