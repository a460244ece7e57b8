#pragma once

#include "ValueStore.h"

namespace host {

// One change of a value or a quality as one line of output, without its line end. A JSON line and a row of
// comma-separated values have the columns time, channel, rtu, id, name, address, value, quality; the time is
// that of the value or, for a quality that has turned bad, of that moment.
std::string changeAsLine(const PointRef& ref, const PointState& state);
std::string changeAsJson(const PointRef& ref, const PointState& state);
std::string changeAsCsv(const PointRef& ref, const PointState& state);
extern const char* const changeCsvHeader;

// A text as JSON writes it, quotes included.
std::string jsonText(const std::string& utf8);

} // namespace host
