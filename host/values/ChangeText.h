#pragma once

#include "ValueStore.h"

#include <memory>
#include <string>

namespace host {

// Writes changes of a value or a quality in one form of output. One for each thread, since it keeps what a
// change has in common with the one before: second, channel and RTU. The site outlives it.
class ChangeText {
public:
    ChangeText() = default;
    ChangeText(const ChangeText&) = delete;
    ChangeText& operator=(const ChangeText&) = delete;
    virtual ~ChangeText() = default;

    // Appends a change, without a line end.
    virtual void append(std::string& text, const PointRef& ref, const PointState& state) = 0;
};

// A line for people, a JSON object, and a row of comma-separated values. The latter two have the columns
// time, channel, rtu, id, name, address, value, quality and unit, which JSON leaves out where there is none.
// JSON has "raw" too where the value is not the number in the controller. The time is that of the value or,
// for a quality that has turned bad, of that moment; a point that was never read has that of the telling.
std::unique_ptr<ChangeText> makeLineText();
std::unique_ptr<ChangeText> makeJsonText();
std::unique_ptr<ChangeText> makeCsvText();
extern const char* const changeCsvHeader;

// A text as JSON writes it, quotes included.
std::string jsonText(const std::string& utf8);

} // namespace host
