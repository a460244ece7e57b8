#include "RegisterWords.h"

#include "site/PointValue.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace host {

namespace {

using WordOrder = ModbusSettings::WordOrder;

constexpr auto largestSingle = static_cast<double>(std::numeric_limits<float>::max());
constexpr auto lowestInteger = static_cast<double>(std::numeric_limits<std::int32_t>::min());
constexpr auto highestInteger = static_cast<double>(std::numeric_limits<std::int32_t>::max());

float singleOf(double number) {
    return std::isnan(number) ? std::numeric_limits<float>::quiet_NaN()
                              : static_cast<float>(std::clamp(number, -largestSingle, largestSingle));
}

std::uint32_t bitsOf(const Point& point, double raw) {
    if (!isModbusFloat(point))
        return static_cast<std::uint32_t>(
            static_cast<std::int32_t>(std::clamp(raw, lowestInteger, highestInteger)));
    const float single = singleOf(valueOf(point, raw));
    std::uint32_t bits = 0;
    std::memcpy(&bits, &single, sizeof bits);
    return bits;
}

double numberOfBits(const Point& point, std::uint32_t bits) {
    if (!isModbusFloat(point))
        return static_cast<std::int32_t>(bits);
    float single = 0;
    std::memcpy(&single, &bits, sizeof single);
    return static_cast<double>(single);
}

} // namespace

bool fitsRegisters(const Point& point, double raw) {
    if (!isModbusFloat(point))
        return raw >= lowestInteger && raw <= highestInteger;
    return std::fabs(valueOf(point, raw)) <= largestSingle; // not so for NaN
}

RegisterPair registersOf(const Point& point, double raw, WordOrder order) {
    const std::uint32_t bits = bitsOf(point, raw);
    const auto upper = static_cast<std::uint16_t>(bits >> 16);
    const auto lower = static_cast<std::uint16_t>(bits);
    return order == WordOrder::HighFirst ? RegisterPair{upper, lower} : RegisterPair{lower, upper};
}

double valueOfRegisters(const Point& point, const RegisterPair& registers, WordOrder order) {
    const std::size_t upper = order == WordOrder::HighFirst ? 0 : 1;
    const std::uint32_t bits = std::uint32_t{registers[upper]} << 16 | registers[1 - upper];
    const double number = numberOfBits(point, bits);
    if (!isModbusFloat(point) || point.isFloat || point.isIeee || !std::isfinite(number))
        return number;
    const double nearest = std::round(point.engineering->scaling.rawOf(number));
    const double value = valueOf(point, nearest);
    return singleOf(value) == singleOf(number) ? value : number;
}

} // namespace host
