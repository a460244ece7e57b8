#pragma once

#include "ModelController.h"

#include <HalvexDriverComponent/CPointList.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <cmath>
#include <iterator>

// The points of the fuzzed line: RTU 1 at station 1 has some of each kind, which take four telegrams; RTU 2
// at station 2 has one register, so that its status poll has no telegram. More points would only cost runs.
namespace modelSite {

struct PointOf {
    char media;
    unsigned number;
    bool isFloat = false;
};

// By point number, from 1 on.
constexpr PointOf analogPoints[] = {{'R', 0}, {'R', 1}, {'R', 2, true}, {'T', 5}};
constexpr PointOf statusPoints[] = {{'F', 0}, {'F', 1}, {'F', 2}, {'O', 32}};
constexpr int analogCount = static_cast<int>(std::size(analogPoints));
constexpr int statusCount = static_cast<int>(std::size(statusPoints));
constexpr int analogTelegrams = 2; // R, T
constexpr int statusTelegrams = 2; // F, O
constexpr unsigned pulseMs = 50;
constexpr unsigned pulsePoint = 4;
constexpr unsigned twoOutputsPoint = 1; // off writes F0, on writes F1
constexpr unsigned namedValuePoint = 2; // on writes 0 to F1
constexpr unsigned badOutputPoint = 3;
constexpr int timeOutMs = 250;

inline RemoteTerminalUnit record(int id, LineMode mode) {
    RemoteTerminalUnit unit;
    unit.id = id;
    unit.scan.stationAddress = QString::number(id);
    unit.scan.transmitType = QString::number(mode == LineMode::BreakMode ? 1 : 0);
    unit.scan.breakDelay = QStringLiteral("10");
    unit.sessionTimeOutMs = timeOutMs;
    unit.periods = {0, 0, 0}; // polls come from the input
    return unit;
}

inline QString addressOf(const PointOf& point) {
    return QLatin1Char(point.media) + QString::number(point.number);
}

inline void addAnalogPoints(CPointList& points, int count) {
    for (int i = 0; i < count; ++i) {
        AnalogPoint point;
        point.number = static_cast<unsigned>(i + 1);
        point.address = addressOf(analogPoints[i]);
        point.name = point.address;
        const auto type =
            analogPoints[i].isFloat ? Halvex::PointDataType::Float : Halvex::PointDataType::Integer;
        point.dataType = static_cast<unsigned>(type);
        points.AddAnalogPoint(point);
    }
}

inline void addStatusPoints(CPointList& points) {
    for (int i = 0; i < statusCount; ++i) {
        StatusPoint point;
        point.number = static_cast<unsigned>(i + 1);
        point.firstAddress = addressOf(statusPoints[i]);
        point.firstOutputAddress = point.firstAddress;
        if (point.number == twoOutputsPoint) {
            point.secondOutputAddress = QStringLiteral("F1");
            point.secondOutputValue = QStringLiteral("1");
        }
        if (point.number == namedValuePoint)
            point.firstOutputValue = QStringLiteral("0");
        if (point.number == badOutputPoint)
            point.firstOutputAddress = QStringLiteral("flag 2");
        point.pulse = point.number == pulsePoint;
        point.pulseWidthMs = pulseMs;
        points.AddStatusPoint(point);
    }
}

// What a point shows when its element holds `word`.
inline double valueOf(const PointOf& point, std::uint32_t word) {
    if (point.media == 'T')
        return word;
    if (!point.isFloat)
        return static_cast<std::int32_t>(word);
    const double size = std::ldexp(static_cast<double>(word >> 8), static_cast<int>(word & 0x7F) - 64 - 24);
    return (word & 0x80) != 0 ? -size : size;
}

} // namespace modelSite
