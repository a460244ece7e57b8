#pragma once

#include "plan/ModbusMap.h"

#include <array>
#include <cstdint>

// From the values of analog points to their two registers, and back.
namespace host {

using RegisterPair = std::array<std::uint16_t, registersOfValue>;

// Whether the registers can hold the value that a raw number stands for.
bool fitsRegisters(const Point& point, double raw);
// Of a number that does not fit it is the nearest one that does.
RegisterPair registersOf(const Point& point, double raw, ModbusSettings::WordOrder order);

// The value for a command. Of a scaled whole number it is the one that the registers stand for: single
// precision knows no 12.34, only a number beside it. NaN or infinite where the registers hold such a thing.
double valueOfRegisters(const Point& point, const RegisterPair& registers, ModbusSettings::WordOrder order);

} // namespace host
