#pragma once

#include <services/mqtt/SparkplugSession.h>

#include <HalvexDriverComponent/Halvex.h>

#include <map>

// A site of two RTUs for an edge node: of "north" the line "waterworks" with "pumps" (a flag, a register, one
// in metres) and "well" (a floating-point register).
host::Site pumpHouse();

// What points hold, and an edge node over them that waits for no primary host unless it is given one.
class EdgeNode {
public:
    static constexpr std::uint64_t now = 1'700'000'000'000; // milliseconds since 1970

    explicit EdgeNode(const std::string& primaryHost = {}, std::uint8_t lastBirthDeathSequence = 41);

    // As the store would tell it, and what the states are from then on.
    host::PointChange change(host::PointIndex index, double raw, PointQuality quality = PointQuality::Good);

    const host::Site site = pumpHouse();
    const host::PointTable points{site};
    std::map<host::PointIndex, host::PointState> states;
    host::SparkplugSession session;
};
