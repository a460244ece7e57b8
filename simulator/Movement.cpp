#include "Movement.h"

#include "FloatWord.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace sim {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double sinePeriodMs = 60000.0;
constexpr unsigned registerRange = 100;
constexpr unsigned otherRange = 64;

// When and for which element of a range a value is wanted.
struct Moment {
    std::uint64_t milliseconds;
    std::uint64_t station;
    std::uint64_t element;

    // 100 ms steps; neighbours are 10 steps apart, so that a table of them does not move as one.
    std::uint64_t steps() const { return milliseconds / 100 + element * 10 + station; }
    // Whole periods of 1 to 10 seconds.
    std::uint64_t periods() const { return milliseconds / (1000 * (1 + element % 10)) + station; }
    double sine() const {
        const double turns = static_cast<double>(milliseconds) / sinePeriodMs +
                             static_cast<double>(element) / 100.0 + static_cast<double>(station) / 10.0;
        return std::sin(2.0 * pi * turns);
    }
};

using Shape = std::uint32_t (*)(const Moment&);

std::uint32_t toggle(const Moment& at) {
    return static_cast<std::uint32_t>(at.periods() % 2);
}
std::uint32_t ramp(const Moment& at) {
    return static_cast<std::uint32_t>(at.steps() % 1000);
}
std::uint32_t sine(const Moment& at) {
    return static_cast<std::uint32_t>(std::lround(1000.0 * at.sine()));
}
std::uint32_t secondCounter(const Moment& at) {
    return static_cast<std::uint32_t>(at.milliseconds / 1000 + at.element);
}
double sineTo100(const Moment& at) {
    return 50.0 + 50.0 * at.sine();
}
std::uint32_t floatSine(const Moment& at) {
    return encodeFloatWord(sineTo100(at));
}
std::uint32_t ieeeSine(const Moment& at) {
    const auto number = static_cast<float>(sineTo100(at));
    std::uint32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}
std::uint32_t floatRamp(const Moment& at) {
    return encodeFloatWord(static_cast<double>(at.steps() % 1000) / 10.0);
}
std::uint32_t fallingRamp(const Moment& at) {
    return static_cast<std::uint32_t>(600 - at.steps() % 601);
}
std::uint32_t counter(const Moment& at) {
    return static_cast<std::uint32_t>(at.periods());
}

struct Range {
    Media media;
    unsigned first;
    unsigned count;
    Shape shape;
};

constexpr Range ranges[] = {
    {Media::Inputs, 0, otherRange, toggle},
    {Media::Flags, 0, otherRange, toggle},
    {Media::Registers, 0, registerRange, ramp},
    {Media::Registers, 100, registerRange, sine},
    {Media::Registers, 200, registerRange, secondCounter},
    {Media::Registers, 300, registerRange, floatSine},
    {Media::Registers, 400, registerRange, floatRamp},
    {Media::Timers, 0, otherRange, fallingRamp},
    {Media::Counters, 0, otherRange, counter},
};

bool isFloatShape(Shape shape) {
    return shape == floatSine || shape == floatRamp;
}

bool isMovedByRange(const SitePoint& point) {
    return !point.isIeee && std::any_of(std::begin(ranges), std::end(ranges), [&point](const Range& range) {
        return range.media == point.media && point.address >= range.first &&
               point.address < range.first + range.count && isFloatShape(range.shape) == point.isFloat;
    });
}

// Null for what stands still.
Shape shapeOf(const SitePoint& point) {
    switch (point.media) {
    case Media::Inputs:
    case Media::Flags:
        return toggle;
    case Media::Registers:
        return point.isFloat ? floatSine : point.isIeee ? ieeeSine : ramp;
    case Media::Timers:
        return fallingRamp;
    case Media::Counters:
        return counter;
    case Media::Outputs:
        break;
    }
    return nullptr;
}

} // namespace

void movePoints(Memory& memory, int station, const std::vector<SitePoint>& points,
                std::chrono::milliseconds elapsed) {
    Moment at{static_cast<std::uint64_t>(elapsed.count()), static_cast<std::uint64_t>(station), 0};
    for (const SitePoint& point : points) {
        const Shape shape = shapeOf(point);
        if (shape == nullptr || isMovedByRange(point))
            continue;
        at.element = point.address % 100;
        memory.move(point.media, point.address, {shape(at)});
    }
}

void moveElements(Memory& memory, int station, std::chrono::milliseconds elapsed) {
    Moment at{static_cast<std::uint64_t>(elapsed.count()), static_cast<std::uint64_t>(station), 0};
    for (const Range& range : ranges) {
        std::vector<std::uint32_t> values;
        values.reserve(range.count);
        for (at.element = 0; at.element < range.count; ++at.element)
            values.push_back(range.shape(at));
        memory.move(range.media, range.first, values);
    }
}

} // namespace sim
