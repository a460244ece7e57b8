#include "CommandPlan.h"

#include "DriverCall.h"
#include "plan/WritePlan.h"
#include "runtime/FailureText.h"
#include "runtime/HostRuntime.h"
#include "site/PointValue.h"

#include <algorithm>

namespace host {

namespace {

std::string quoted(const Point& point) {
    return ", point " + std::to_string(point.id) + " \"" + point.name + "\" (" + toText(point.address) +
           "): ";
}

std::string switchFault(const Point& point) {
    if (point.kind != PointKind::Status)
        return std::string("is ") + wordMediaName(point.address.media) +
               " and cannot be switched; give it a value instead";
    if (!isSwitchableMedia(point.address.media))
        return "is an input, which nobody can switch; command the output or flag that acts on it";
    return {};
}

std::string setFault(const Point& point, double value) {
    if (point.kind != PointKind::Analog)
        return "is no register, timer or counter and takes no value; switch it on or off instead";
    return rawOf(point, value).fault;
}

class Checker {
public:
    Checker(const Channel& commandedChannel, const Rtu& commandedRtu)
        : channel(commandedChannel), rtu(commandedRtu) {}

    std::string operator()(const SwitchPoint& action) const {
        return told(action.point, [](const Point& point) { return switchFault(point); });
    }
    std::string operator()(const EndPulse& action) const {
        return told(action.point, [](const Point& point) {
            const std::string fault = switchFault(point);
            return fault.empty() && !canBeReleased(point) ? "has no pulse that could be ended" : fault;
        });
    }
    std::string operator()(const SetPoint& action) const { return set(action.point, action.value); }
    std::string operator()(const SetPoints& action) const {
        if (action.values.empty())
            return nameOf(channel, &rtu) + ": no values to set; give at least one";
        for (const auto& [point, value] : action.values) {
            std::string refusal = set(point, value);
            if (!refusal.empty())
                return refusal;
        }
        return {};
    }
    std::string operator()(const SynchroniseClock&) const {
        return isClockInReach(channel.type) ? "" : nameOf(channel, &rtu) + ": " + clockOutOfReach;
    }

private:
    std::string set(unsigned point, double value) const {
        return told(point, [value](const Point& found) { return setFault(found, value); });
    }

    template <typename Fault>
    std::string told(unsigned id, Fault faultOf) const {
        const Point* const point = findPoint(rtu, id);
        if (point == nullptr)
            return nameOf(channel, &rtu) + ": there is no point " + std::to_string(id) +
                   "; check its number in the point table";
        const std::string fault = faultOf(*point);
        return fault.empty() ? "" : nameOf(channel, &rtu) + quoted(*point) + fault;
    }

    const Channel& channel;
    const Rtu& rtu;
};

// The driver's word for 0.0 is another number to the controller. The integer 0 is the floating-point 0 as
// well.
void appendWrite(std::vector<WordWrite>& writes, const Rtu& rtu, unsigned id, double value) {
    const Point* const point = findPoint(rtu, id);
    if (point == nullptr)
        return;
    const double raw = rawOf(*point, value).raw;
    if (point->isFloat && raw == 0)
        writes.push_back({integerTwinOf(rtu, *point), point->address, false, 0});
    else
        writes.push_back({numberOf(rtu, *point), point->address, point->isFloat, raw});
}

} // namespace

const Point* findPoint(const Rtu& rtu, unsigned id) {
    const auto found = std::find_if(rtu.points.begin(), rtu.points.end(),
                                    [id](const Point& point) { return point.id == id; });
    return found == rtu.points.end() ? nullptr : &*found;
}

std::string refusalOf(const Channel& channel, const Rtu& rtu, const CommandAction& action) {
    if (!rtu.enabled)
        return nameOf(channel, &rtu) + " is disabled; enable it in the site file and start anew";
    return std::visit(Checker(channel, rtu), action);
}

std::vector<CommandAction> planDriverCalls(const Rtu& rtu, const CommandAction& action) {
    if (const auto* const switching = std::get_if<SwitchPoint>(&action))
        return {SwitchPoint{numberOf(rtu, *findPoint(rtu, switching->point)), switching->on}};
    if (const auto* const ending = std::get_if<EndPulse>(&action)) {
        const Point& point = *findPoint(rtu, ending->point);
        return {SwitchPoint{isOffCommandItsRelease(point) ? numberOf(rtu, point) : releaseTwinOf(rtu, point),
                            false}};
    }
    std::vector<WordWrite> writes;
    if (const auto* const one = std::get_if<SetPoint>(&action))
        appendWrite(writes, rtu, one->point, one->value);
    else if (const auto* const list = std::get_if<SetPoints>(&action))
        for (const auto& [point, value] : list->values)
            appendWrite(writes, rtu, point, value);
    else
        return {action};
    std::vector<CommandAction> calls;
    const unsigned longest = std::min(rtu.limits.writeWords.value_or(longestWriteList), longestWriteList);
    for (const WordCommand& command : planWordWrites(writes, longest))
        calls.push_back(actionOf(command));
    return calls;
}

} // namespace host
