#include "PlotAxes.h"

#include "site/NumberText.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace host {

namespace {

constexpr std::int64_t second = 1'000;
constexpr std::int64_t minute = 60 * second;
constexpr std::int64_t hour = 60 * minute;
constexpr std::int64_t day = 24 * hour;
constexpr std::int64_t year = 365 * day;

// A step between ticks, and how many of its unit it has.
struct TimeStep {
    enum class Unit { Clock, Hours, Days, Weeks, Months };
    Unit unit = Unit::Clock;
    int count = 1;
    std::int64_t length = second; // about
};

constexpr std::array<TimeStep, 27> timeSteps{{
    {TimeStep::Unit::Clock, 1, second},
    {TimeStep::Unit::Clock, 1, 2 * second},
    {TimeStep::Unit::Clock, 1, 5 * second},
    {TimeStep::Unit::Clock, 1, 10 * second},
    {TimeStep::Unit::Clock, 1, 15 * second},
    {TimeStep::Unit::Clock, 1, 30 * second},
    {TimeStep::Unit::Clock, 1, minute},
    {TimeStep::Unit::Clock, 1, 2 * minute},
    {TimeStep::Unit::Clock, 1, 5 * minute},
    {TimeStep::Unit::Clock, 1, 10 * minute},
    {TimeStep::Unit::Clock, 1, 15 * minute},
    {TimeStep::Unit::Clock, 1, 30 * minute},
    {TimeStep::Unit::Hours, 1, hour},
    {TimeStep::Unit::Hours, 2, 2 * hour},
    {TimeStep::Unit::Hours, 3, 3 * hour},
    {TimeStep::Unit::Hours, 6, 6 * hour},
    {TimeStep::Unit::Hours, 12, 12 * hour},
    {TimeStep::Unit::Days, 1, day},
    {TimeStep::Unit::Days, 2, 2 * day},
    {TimeStep::Unit::Weeks, 1, 7 * day},
    {TimeStep::Unit::Weeks, 2, 14 * day},
    {TimeStep::Unit::Months, 1, year / 12},
    {TimeStep::Unit::Months, 3, year / 4},
    {TimeStep::Unit::Months, 6, year / 2},
    {TimeStep::Unit::Months, 12, year},
    {TimeStep::Unit::Months, 60, 5 * year},
    {TimeStep::Unit::Months, 1'200, 100 * year},
}};

const TimeStep& stepFor(std::int64_t length, std::size_t most) {
    for (const TimeStep& step : timeSteps)
        if (length / step.length <= static_cast<std::int64_t>(most))
            return step;
    return timeSteps.back();
}

QDateTime local(std::int64_t timeMs, const QTimeZone& zone) {
    return QDateTime::fromMSecsSinceEpoch(timeMs, zone);
}

std::string formatted(const QDateTime& time, const char* format) {
    return time.toString(QString::fromLatin1(format)).toStdString();
}

// Multiples of the step, by the clocks of the beginning.
std::vector<std::int64_t> clockTimes(std::int64_t fromMs, std::int64_t toMs, const TimeStep& step,
                                     const QTimeZone& zone) {
    const std::int64_t offset = local(fromMs, zone).offsetFromUtc() * second;
    std::vector<std::int64_t> times;
    const std::int64_t sinceStep = (fromMs + offset) % step.length;
    for (std::int64_t time = fromMs - sinceStep; time < toMs; time += step.length)
        if (time >= fromMs)
            times.push_back(time);
    return times;
}

// Each hour is looked at, so that a change of the clocks moves nothing that follows.
std::vector<std::int64_t> hourTimes(std::int64_t fromMs, std::int64_t toMs, const TimeStep& step,
                                    const QTimeZone& zone) {
    std::vector<std::int64_t> times;
    for (const std::int64_t time : clockTimes(fromMs, toMs, {TimeStep::Unit::Clock, 1, hour}, zone)) {
        const bool isFarEnough = times.empty() || time - times.back() >= step.length - hour;
        const bool isRound = local(time, zone).time().hour() % step.count == 0;
        if (isRound && (step.count == 1 || isFarEnough))
            times.push_back(time);
    }
    return times;
}

bool isRound(const QDate& date, const TimeStep& step) {
    switch (step.unit) {
    case TimeStep::Unit::Days:
        return date.toJulianDay() % step.count == 0;
    case TimeStep::Unit::Weeks:
        return date.dayOfWeek() == Qt::Monday && date.toJulianDay() / 7 % step.count == 0;
    default:
        return date.day() == 1 && (date.year() * 12 + date.month() - 1) % step.count == 0;
    }
}

std::vector<std::int64_t> dateTimes(std::int64_t fromMs, std::int64_t toMs, const TimeStep& step,
                                    const QTimeZone& zone) {
    std::vector<std::int64_t> times;
    for (QDate date = local(fromMs, zone).date();; date = date.addDays(1)) {
        const std::int64_t time = date.startOfDay(zone).toMSecsSinceEpoch();
        if (time >= toMs)
            return times;
        if (time >= fromMs && isRound(date, step))
            times.push_back(time);
    }
}

std::vector<std::int64_t> timesOf(std::int64_t fromMs, std::int64_t toMs, const TimeStep& step,
                                  const QTimeZone& zone) {
    switch (step.unit) {
    case TimeStep::Unit::Clock:
        return clockTimes(fromMs, toMs, step, zone);
    case TimeStep::Unit::Hours:
        return hourTimes(fromMs, toMs, step, zone);
    default:
        return dateTimes(fromMs, toMs, step, zone);
    }
}

struct LabelFormats {
    const char* label;
    const char* below;
};

LabelFormats formatsOf(const TimeStep& step) {
    if (step.length < minute)
        return {"HH:mm:ss", "yyyy-MM-dd"};
    if (step.length < day)
        return {"HH:mm", "yyyy-MM-dd"};
    return {step.unit == TimeStep::Unit::Months ? "yyyy-MM" : "MM-dd",
            step.unit == TimeStep::Unit::Months ? "" : "yyyy"};
}

std::string offsetText(const QDateTime& time) {
    const int minutes = time.offsetFromUtc() / 60;
    char text[16];
    std::snprintf(text, sizeof text, "UTC%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                  std::abs(minutes) % 60);
    return text;
}

// 1, 2 or 5 times a power of ten, and at least `least`.
double roundStep(double least) {
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1., 2., 5.})
        if (factor * power >= least * (1 - 1e-9))
            return factor * power;
    return 10 * power;
}

std::string tickLabel(double value, double step) {
    const double decimals = std::max(0., -std::floor(std::log10(step) + 1e-9));
    constexpr double mostDecimals = 6;
    constexpr double mostDigits = 1e7;
    if (decimals > mostDecimals || std::fabs(value) >= mostDigits) {
        char text[32];
        std::snprintf(text, sizeof text, "%.6g", value);
        return text;
    }
    std::string text;
    appendFixed(text, value == 0 ? 0. : value, static_cast<unsigned>(decimals)); // not "-0"
    return text;
}

} // namespace

std::vector<TimeTick> timeTicks(std::int64_t fromMs, std::int64_t toMs, const QTimeZone& zone,
                                std::size_t most) {
    const TimeStep& step = stepFor(toMs - fromMs, most);
    const LabelFormats formats = formatsOf(step);
    std::vector<TimeTick> ticks;
    std::string lastBelow;
    for (const std::int64_t time : timesOf(fromMs, toMs, step, zone)) {
        const QDateTime at = local(time, zone);
        std::string below = formatted(at, formats.below);
        ticks.push_back({time, formatted(at, formats.label), below == lastBelow ? "" : below});
        lastBelow = std::move(below);
    }
    return ticks;
}

std::string zoneText(std::int64_t fromMs, std::int64_t toMs, const QTimeZone& zone) {
    std::string text = zone.id().toStdString() + ", " + offsetText(local(fromMs, zone));
    for (const QTimeZone::OffsetData& change :
         zone.transitions(local(fromMs + 1, zone), local(toMs - 1, zone)))
        text += ", from " + formatted(change.atUtc.toTimeZone(zone), "yyyy-MM-dd HH:mm") + " on " +
                offsetText(change.atUtc.toTimeZone(zone));
    return text;
}

std::string plainTimeText(std::int64_t timeMs, const QTimeZone& zone) {
    return formatted(local(timeMs, zone), "yyyy-MM-dd HH:mm:ss");
}

ValueAxis valueAxis(double lowest, double highest, std::size_t most) {
    constexpr double room = 0.05; // of the height, above and below
    if (highest <= lowest) {
        const double around = std::max(1., std::fabs(lowest)) * 0.1;
        lowest -= around;
        highest += around;
    }
    ValueAxis axis;
    axis.low = lowest - room * (highest - lowest);
    axis.high = highest + room * (highest - lowest);
    const double step = roundStep((axis.high - axis.low) / static_cast<double>(most));
    const double first = std::ceil(axis.low / step - 1e-9);
    for (double i = first; i * step <= axis.high + step * 1e-9; ++i)
        axis.ticks.push_back({i * step, tickLabel(i * step, step)});
    return axis;
}

} // namespace host
