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

// Two points with one number cannot be told apart: tells each but the first.
void findDuplicatePoints(const std::vector<Point>& points, Findings& findings);

} // namespace host
