#include "ModbusOrders.h"

#include "RegisterWords.h"
#include "site/PointValue.h"

namespace host {

namespace {

ModbusOrders refused(ModbusFault fault) {
    return {fault, {}};
}

std::optional<ModbusFault> pointFault(const MappedPoint* point) {
    if (point == nullptr || !isModbusWritable(*point->point))
        return ModbusFault::IllegalAddress;
    if (!point->rtu->enabled)
        return ModbusFault::PathUnavailable;
    return std::nullopt;
}

// Adds it to the RTU's command, or begins one.
void addValue(std::vector<Command>& commands, const MappedPoint& point, double value) {
    for (Command& command : commands)
        if (command.channelId == point.channel->id && command.rtuId == point.rtu->id) {
            std::get<SetPoints>(command.action).values[point.point->id] = value;
            return;
        }
    commands.push_back({point.channel->id, point.rtu->id, SetPoints{{{point.point->id, value}}}});
}

} // namespace

ModbusOrders ordersOf(const ModbusMap& map, unsigned unit, const CoilWrite& write) {
    if (!map.hasUnit(unit))
        return refused(ModbusFault::PathUnavailable);
    if (write.values.size() > mostCoilsAtOnce)
        return refused(ModbusFault::IllegalValue);
    ModbusOrders orders;
    for (unsigned i = 0; i < write.values.size(); ++i) {
        const MappedPoint* const point = map.statusAt(unit, write.first + i);
        if (const std::optional<ModbusFault> fault = pointFault(point))
            return refused(*fault);
        Command& command = orders.commands.emplace_back();
        command.channelId = point->channel->id;
        command.rtuId = point->rtu->id;
        command.action = SwitchPoint{point->point->id, write.values[i]};
    }
    return orders;
}

ModbusOrders ordersOf(const ModbusMap& map, unsigned unit, const RegisterWrite& write,
                      ModbusSettings::WordOrder order) {
    if (!map.hasUnit(unit))
        return refused(ModbusFault::PathUnavailable);
    ModbusOrders orders;
    for (unsigned i = 0; i < write.values.size(); i += registersOfValue) {
        const MappedPoint* const point = map.analogAt(unit, write.first + i);
        if (const std::optional<ModbusFault> fault = pointFault(point))
            return refused(*fault);
        if (point->address != write.first + i || i + 1 == write.values.size()) // half of a value
            return refused(ModbusFault::IllegalAddress);
        const double value = valueOfRegisters(*point->point, {write.values[i], write.values[i + 1]}, order);
        if (!rawOf(*point->point, value).fault.empty())
            return refused(ModbusFault::IllegalValue);
        addValue(orders.commands, *point, value);
    }
    return orders;
}

std::optional<ModbusFault> faultOf(const CommandEnd& end) {
    using Result = Halvex::DriverErrorResult;
    if (end.wasRefused)
        return ModbusFault::DeviceFailure;
    switch (end.result) {
    case Result::Success:
        return std::nullopt;
    case Result::TimeOut:
        return ModbusFault::TargetSilent;
    case Result::ChannelError:
        return ModbusFault::PathUnavailable;
    default:
        return ModbusFault::DeviceFailure;
    }
}

} // namespace host
