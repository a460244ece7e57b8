#pragma once

#include "CsvReader.h"
#include "HashIndex.h"
#include "Site.h"

#include <array>

namespace host {

// What a row of a point table or a point's table in the site file may say of a point; those that a point
// needs come first.
enum class PointField : std::size_t {
    Id,
    Name,
    Kind,
    Address,
    Format,
    Value,
    SecondAddress,
    SecondValue,
    PulseMs,
    Scale,
    Offset,
    Unit,
    Decimals,
    Deadband,
    Description,
    Modbus
};
constexpr std::size_t pointFieldCount = static_cast<std::size_t>(PointField::Modbus) + 1;
constexpr std::size_t neededPointFields = 4;

// What a field is called at the head of a column and as a key, and what stands in it.
struct PointColumn {
    std::string name;
    bool isNumber = false; // a spreadsheet may write it with decimals
};
extern const std::array<PointColumn, pointFieldCount> pointColumns; // by PointField

// What is said of one point, by PointField; null where nothing is. The cells outlive it.
using PointFields = std::array<const Cell*, pointFieldCount>;

// Where a point begins.
struct PointPlace {
    const std::string& file;
    Spot spot;
};

// The point that `fields` describe. Nothing, with the findings told, when something is wrong with them.
// An empty field counts as left out. The pool is that of the other points of the table.
std::optional<Point> readPoint(const PointFields& fields, const PointPlace& place, EngineeringPool& pool,
                               Findings& findings);

// The ids of an RTU's points. Two points with one id cannot be told apart. Asks for the id alone, so that a
// point with other faults takes part too.
class PointIds {
public:
    // Makes room for as many points.
    void reserve(std::size_t expected);
    // Tells when a point before has the id.
    void take(const PointFields& fields, const PointPlace& place, Findings& findings);

private:
    struct Taker {
        unsigned id = 0;
        unsigned line = 0;
        std::size_t nameEnd = 0; // its name's, in `names`; it begins where that of the one before ends
    };

    std::string nameOf(std::uint32_t taker) const;

    std::vector<Taker> takers;
    std::string names; // one behind the other, empty for a point without one
    HashIndex index;
};

} // namespace host
