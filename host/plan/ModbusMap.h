#pragma once

#include "site/Site.h"

#include <cstdint>
#include <map>
#include <vector>

// Where the points of a site lie for clients of Modbus: status points as discrete inputs, and under the same
// address as coils where they can be switched; analog points as input registers and, under the same address,
// holding registers, two for each. Addresses are those of the telegram, from 0 on.
//
// An RTU's points lie in their order from the beginning of the RTU's block on. So a point that is added at
// the end of its table, and an RTU that is added at the end of the site, move nothing. A point with an
// address of its own lies there, and moves no other point.
namespace host {

constexpr unsigned registersOfValue = 2;

// With ModbusSettings::Quality::Bits these discrete inputs tell which values are good: of the status point at
// address n the one at statusQuality + n; of both registers of the analog point at n, analogQuality + n and
// the one behind.
constexpr unsigned statusQuality = 0x4000;
constexpr unsigned analogQuality = 0x8000;

struct MappedPoint {
    const Channel* channel = nullptr;
    const Rtu* rtu = nullptr;
    const Point* point = nullptr;
    std::uint32_t index = 0;   // its place among all points of the site, RTU by RTU in the order of the file
    unsigned unit = 0;         // 0: every unit id
    std::uint16_t address = 0; // of an analog point the first one
};

// Whether a value goes into its registers as an IEEE number of single precision; else as a signed whole
// number of 32 bits.
bool isModbusFloat(const Point& point);
// Whether clients can be let write it.
bool isModbusWritable(const Point& point);

// The site outlives it. Never changes: any thread.
class ModbusMap {
public:
    // Tells what does not fit. What is told lies nowhere.
    ModbusMap(const Site& site, const ModbusSettings& settings, Findings& findings);

    // In the order of the file.
    const std::vector<MappedPoint>& points() const { return mapped; }

    bool hasUnit(unsigned unit) const { return find(unit) != nullptr; }
    // Null: there is none.
    const MappedPoint* statusAt(unsigned unit, unsigned address) const;
    const MappedPoint* analogAt(unsigned unit, unsigned address) const; // by either of its registers

private:
    friend class ModbusMapMaker;

    using Places = std::vector<std::uint32_t>; // in `mapped`, from 1 on, by address; 0: none
    struct Tables {
        Places status;
        Places analog;
    };

    const Tables* find(unsigned unit) const;
    const MappedPoint* at(const Places& places, unsigned address) const;

    const bool hasUnits;
    std::vector<MappedPoint> mapped;
    std::map<unsigned, Tables> tables; // by unit id; of a common map under 0
};

} // namespace host
