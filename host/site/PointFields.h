#pragma once

#include "Site.h"

#include <map>

namespace host {

// What a point table row or a point table in the site file says, as text, each with its place.
struct Field {
    std::string text;
    Place place;
};
using PointFields = std::map<std::string, Field>;

// The names that a field may have, those that a point needs first.
extern const std::vector<std::string> pointFieldNames;
constexpr std::size_t neededPointFields = 4;

// The point that `fields` describe. Nothing, with the findings told, when something is wrong with them.
// An empty field counts as left out. `place` is where the point begins.
std::optional<Point> readPoint(const PointFields& fields, const Place& place, Findings& findings);

// The ids of an RTU's points. Two points with one id cannot be told apart. Asks for the id alone, so that a
// point with other faults takes part too.
class PointIds {
public:
    // Tells when a point before has the id.
    void take(const PointFields& fields, const Place& place, Findings& findings);

private:
    struct Taker {
        std::string name; // empty when it has none
        unsigned line = 0;
    };

    std::map<unsigned, Taker> takers;
};

} // namespace host
