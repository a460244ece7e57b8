#include "ModbusMap.h"

#include "site/CountText.h"

#include <algorithm>

namespace host {

namespace {

using Settings = ModbusSettings;

constexpr unsigned addressesOfTable = 65'536;
constexpr unsigned highestUnit = 247; // those above are reserved

const char* const ownAddressRemedy =
    "give points that clients need an address of their own in the column modbus, and write points = "
    "\"listed\" in [modbus]";

std::string quoted(const Rtu& rtu) {
    return "RTU " + std::to_string(rtu.id) + " \"" + rtu.name + '"';
}

unsigned sizeOf(PointKind kind) {
    return kind == PointKind::Analog ? registersOfValue : 1;
}

} // namespace

bool isModbusFloat(const Point& point) {
    const bool isScaled = point.engineering && !point.engineering->scaling.isNone();
    return point.kind == PointKind::Analog && (point.isFloat || point.isIeee || isScaled);
}

bool isModbusWritable(const Point& point) {
    return point.kind == PointKind::Analog || isSwitchableMedia(point.address.media);
}

// Places the points, RTU by RTU.
class ModbusMapMaker {
public:
    ModbusMapMaker(ModbusMap& modbusMap, const Settings& modbusSettings, Findings& foundSoFar)
        : map(modbusMap), settings(modbusSettings), findings(foundSoFar) {}

    void add(const Channel& channel, const Rtu& rtu) {
        const unsigned order = rtuCount++;
        const unsigned unit = map.hasUnits ? rtu.modbusUnit.value_or(order + 1) : 0;
        const std::uint32_t first = pointCount;
        pointCount += static_cast<std::uint32_t>(rtu.points.size());
        if (map.hasUnits && !takeUnit(rtu, unit))
            return;
        const auto begin = static_cast<unsigned>(
            map.hasUnits ? 0
                         : std::min<std::uint64_t>(std::uint64_t{order} * settings.block, addressesOfTable));
        addInOrder(MappedPoint{&channel, &rtu, nullptr, first, unit, 0}, begin);
    }

private:
    // Behind the last address of values in a table.
    unsigned endOf(PointKind kind) const {
        const bool hasBits = settings.quality == Settings::Quality::Bits;
        return !hasBits ? addressesOfTable : kind == PointKind::Status ? statusQuality : analogQuality;
    }

    bool takeUnit(const Rtu& rtu, unsigned unit) {
        if (unit > highestUnit)
            findings.error(rtu.place,
                           quoted(rtu) + " would be unit " + std::to_string(unit) +
                               " of [modbus], which has " + std::to_string(highestUnit),
                           "write units = \"one\", or divide the site");
        else if (!map.tables.try_emplace(unit).second)
            findings.error(rtu.place,
                           quoted(rtu) + " has the Modbus unit of another RTU: " + std::to_string(unit),
                           "give each RTU a modbus_unit of its own; without it, it is counted from the "
                           "first RTU of the file");
        else
            return true;
        return false;
    }

    // `ofRtu` is what its points have in common, with the index of the first one.
    void addInOrder(const MappedPoint& ofRtu, unsigned begin) {
        unsigned counts[] = {0, 0}; // by kind
        unsigned left[] = {0, 0};   // that have no room
        const std::vector<Point>& points = ofRtu.rtu->points;
        for (std::uint32_t i = 0; i < points.size(); ++i) {
            MappedPoint one = ofRtu;
            one.point = &points[i];
            one.index += i;
            const auto kind = static_cast<std::size_t>(points[i].kind);
            const unsigned size = sizeOf(points[i].kind);
            const unsigned offset = counts[kind]++ * size;
            if (points[i].modbus)
                place(one, *points[i].modbus);
            else if (settings.points == Settings::Points::Listed)
                continue;
            else if (isWithinBlock(points[i].kind, begin, offset + size))
                place(one, begin + offset);
            else
                ++left[kind];
        }
        for (const PointKind kind : {PointKind::Status, PointKind::Analog})
            if (left[static_cast<std::size_t>(kind)] > 0)
                tellFull(*ofRtu.rtu, kind, begin);
    }

    bool isWithinBlock(PointKind kind, unsigned begin, unsigned endOffset) const {
        return (map.hasUnits || endOffset <= settings.block) && begin + endOffset <= endOf(kind);
    }

    void tellFull(const Rtu& rtu, PointKind kind, unsigned begin) {
        const bool isAnalog = kind == PointKind::Analog;
        const std::string what =
            quoted(rtu) + " has " +
            countText(countPoints(rtu, kind), isAnalog ? "analog point" : "status point") +
            ", for which [modbus] ";
        const std::string noun = isAnalog ? " registers" : " addresses";
        if (map.hasUnits || begin + settings.block > endOf(kind))
            findings.error(rtu.place, what + "has no room before address " + std::to_string(endOf(kind)),
                           map.hasUnits ? ownAddressRemedy
                                        : std::string("make block smaller, write units = \"rtu\", or ") +
                                              ownAddressRemedy);
        else
            findings.error(rtu.place, what + "has a block of " + std::to_string(settings.block) + noun,
                           std::string("make block larger, or ") + ownAddressRemedy);
    }

    void place(MappedPoint one, unsigned address) {
        const Point& point = *one.point;
        const unsigned size = sizeOf(point.kind);
        const Place spot{one.rtu->pointFile, point.spot.line, point.spot.column};
        if (address + size > endOf(point.kind)) {
            findings.error(spot,
                           "Modbus address " + std::to_string(address) + " of \"" + point.name +
                               "\" lies where the quality bits are",
                           "give it one below " + std::to_string(endOf(point.kind) - size + 1));
            return;
        }
        ModbusMap::Tables& tables = map.tables[one.unit];
        ModbusMap::Places& places = point.kind == PointKind::Analog ? tables.analog : tables.status;
        if (places.size() < address + size)
            places.resize(address + size, 0);
        for (unsigned i = 0; i < size; ++i)
            if (places[address + i] != 0) {
                const MappedPoint& other = map.mapped[places[address + i] - 1];
                findings.error(spot,
                               "Modbus address " + std::to_string(address) + " of \"" + point.name +
                                   "\" is taken by \"" + other.point->name + "\" of " + quoted(*other.rtu),
                               "give one of them another address in the column modbus");
                return;
            }
        one.address = static_cast<std::uint16_t>(address);
        map.mapped.push_back(one);
        for (unsigned i = 0; i < size; ++i)
            places[address + i] = static_cast<std::uint32_t>(map.mapped.size());
    }

    ModbusMap& map;
    const Settings& settings;
    Findings& findings;
    unsigned rtuCount = 0;
    std::uint32_t pointCount = 0;
};

ModbusMap::ModbusMap(const Site& site, const ModbusSettings& settings, Findings& findings)
    : hasUnits(settings.units == ModbusSettings::Units::Rtu) {
    if (!hasUnits)
        tables.try_emplace(0);
    ModbusMapMaker maker(*this, settings, findings);
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            maker.add(channel, rtu);
}

const ModbusMap::Tables* ModbusMap::find(unsigned unit) const {
    const auto found = tables.find(hasUnits ? unit : 0);
    return found == tables.end() ? nullptr : &found->second;
}

const MappedPoint* ModbusMap::at(const Places& places, unsigned address) const {
    return address < places.size() && places[address] != 0 ? &mapped[places[address] - 1] : nullptr;
}

const MappedPoint* ModbusMap::statusAt(unsigned unit, unsigned address) const {
    const Tables* const found = find(unit);
    return found == nullptr ? nullptr : at(found->status, address);
}

const MappedPoint* ModbusMap::analogAt(unsigned unit, unsigned address) const {
    const Tables* const found = find(unit);
    return found == nullptr ? nullptr : at(found->analog, address);
}

} // namespace host
