#include "DriverCall.h"

#include <HalvexDriverComponent/CRtu.h>

namespace host {

namespace {

struct Caller {
    CRtu& rtu;
    CReply* reply;

    int operator()(const SwitchPoint& one) const { return rtu.statusWrite(one.point, one.on ? 1 : 0, reply); }
    int operator()(const EndPulse& one) const { return rtu.statusWrite(one.point, 0, reply); }
    int operator()(const SetPoint& one) const { return rtu.analogWrite(one.point, one.value, reply); }
    int operator()(const SetPoints& list) const {
        return rtu.analogWriteList(QMap<unsigned, double>(list.values), reply);
    }
    int operator()(const SynchroniseClock&) const { return rtu.timeSync(reply); }
};

} // namespace

CommandAction actionOf(const WordCommand& writes) {
    if (writes.size() == 1)
        return SetPoint{writes.front().point, writes.front().value};
    SetPoints list;
    for (const WordWrite& write : writes)
        list.values.emplace(write.point, write.value);
    return list;
}

int callDriver(CRtu& rtu, const CommandAction& action, CReply* reply) {
    return std::visit(Caller{rtu, reply}, action);
}

} // namespace host
