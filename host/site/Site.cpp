#include "Site.h"

#include <algorithm>

namespace host {

std::size_t countPoints(const Rtu& rtu, PointKind kind) {
    const auto count = std::count_if(rtu.points.begin(), rtu.points.end(),
                                     [kind](const Point& point) { return point.kind == kind; });
    return static_cast<std::size_t>(count);
}

bool hasPoints(const Rtu& rtu, PointKind kind) {
    return countPoints(rtu, kind) > 0;
}

bool isPulse(const Point& point) {
    return point.pulseMs > 0;
}

// A second address is another element; a value of its own is what an off command writes as well.
bool isOffCommandItsRelease(const Point& point) {
    return !point.secondAddress && !point.value;
}

ElementAddress elementSwitchedOn(const Point& point) {
    return point.secondAddress.value_or(point.address);
}

bool isReleasedByDriver(const Point& point) {
    const std::optional<std::uint8_t>& value = point.secondAddress ? point.secondValue : point.value;
    return isPulse(point) && value.value_or(1) == 1;
}

bool canBeReleased(const Point& point) {
    return isOffCommandItsRelease(point) || isReleasedByDriver(point);
}

bool isClockInReach(LineType type) {
    return type == LineType::Serial;
}

const char* toText(LineType type) {
    return type == LineType::Serial ? "SBus-Serial" : "SBus-Ethernet";
}

const char* toText(TransmitType type) {
    return type == TransmitType::Data ? "data" : "break";
}

} // namespace host
