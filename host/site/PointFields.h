#pragma once

#include "CsvReader.h"
#include "Site.h"

#include <array>
#include <unordered_map>

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
    PulseMs
};
extern const std::vector<std::string> pointFieldNames; // in this order
constexpr std::size_t pointFieldCount = 9;
constexpr std::size_t neededPointFields = 4;

// What is said of one point, by PointField; null where nothing is. The cells outlive it.
using PointFields = std::array<const Cell*, pointFieldCount>;

// Where a point begins.
struct PointPlace {
    const std::string& file;
    Spot spot;
};

// The point that `fields` describe. Nothing, with the findings told, when something is wrong with them.
// An empty field counts as left out.
std::optional<Point> readPoint(const PointFields& fields, const PointPlace& place, Findings& findings);

// The ids of an RTU's points. Two points with one id cannot be told apart. Asks for the id alone, so that a
// point with other faults takes part too.
class PointIds {
public:
    // Tells when a point before has the id.
    void take(const PointFields& fields, const PointPlace& place, Findings& findings);

private:
    struct Taker {
        std::string name; // empty when it has none
        unsigned line = 0;
    };

    std::unordered_map<unsigned, Taker> takers;
};

} // namespace host
