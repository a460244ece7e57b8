#pragma once

#include <QTimeZone>

#include <cstdint>
#include <string>
#include <vector>

// Where the axes of a plot have ticks, and what stands there.
namespace host {

struct TimeTick {
    std::int64_t timeMs = 0;
    std::string label; // "14:00", "11-22"
    std::string below; // what is the same for several ticks, where it begins: "2026-11-22"
};

// At round local times, at most about so many. An hour that comes twice has its ticks twice.
std::vector<TimeTick> timeTicks(std::int64_t fromMs, std::int64_t toMs, const QTimeZone& zone,
                                std::size_t most);

// "Europe/Zurich, UTC+01:00"; where the clocks change within: "Europe/Zurich, UTC+02:00, from 2026-10-25
// 02:00 on UTC+01:00"
std::string zoneText(std::int64_t fromMs, std::int64_t toMs, const QTimeZone& zone);

// "2026-11-22 14:00:00"
std::string plainTimeText(std::int64_t timeMs, const QTimeZone& zone);

struct ValueTick {
    double value = 0;
    std::string label;
};

struct ValueAxis {
    double low = 0;
    double high = 1;
    std::vector<ValueTick> ticks;
};

// With some room around the values, and ticks at 1, 2 and 5 times powers of ten, at most about so many.
ValueAxis valueAxis(double lowest, double highest, std::size_t most);

} // namespace host
