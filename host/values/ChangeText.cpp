#include "ChangeText.h"

#include "ValueText.h"

#include <cmath>

namespace host {

const char* const changeCsvHeader = "time,channel,rtu,id,name,address,value,quality";

namespace {

std::string jsonEscape(unsigned char control) {
    const char* const digits = "0123456789abcdef";
    return std::string("\\u00") + digits[control >> 4] + digits[control & 0xF];
}

std::string csvText(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char character : text)
        quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
    return quoted + '"';
}

} // namespace

std::string jsonText(const std::string& utf8) {
    std::string text = "\"";
    for (const char character : utf8) {
        if (character == '"' || character == '\\')
            text += std::string("\\") + character;
        else if (static_cast<unsigned char>(character) < 0x20)
            text += jsonEscape(static_cast<unsigned char>(character));
        else
            text += character;
    }
    return text + '"';
}

std::string changeAsLine(const PointRef& ref, const PointState& state) {
    std::string line = localTimeText(state.changeTimeMs) + "  " + ref.rtu->name + "/" + ref.point->name +
                       " (" + toText(ref.point->address) + ")";
    if (state.hasValue())
        line += " = " + valueText(*ref.point, state.value);
    return line + "  " + toText(state.quality);
}

std::string changeAsJson(const PointRef& ref, const PointState& state) {
    const bool isNumber = state.hasValue() && std::isfinite(state.value); // JSON knows no infinity
    return "{\"time\":" + jsonText(utcTimeText(state.changeTimeMs)) +
           ",\"channel\":" + jsonText(ref.channel->name) + ",\"rtu\":" + jsonText(ref.rtu->name) +
           ",\"id\":" + std::to_string(ref.point->id) + ",\"name\":" + jsonText(ref.point->name) +
           ",\"address\":" + jsonText(toText(ref.point->address)) +
           ",\"value\":" + (isNumber ? valueText(*ref.point, state.value) : "null") +
           ",\"quality\":" + jsonText(toText(state.quality)) + "}";
}

std::string changeAsCsv(const PointRef& ref, const PointState& state) {
    return utcTimeText(state.changeTimeMs) + ',' + csvText(ref.channel->name) + ',' + csvText(ref.rtu->name) +
           ',' + std::to_string(ref.point->id) + ',' + csvText(ref.point->name) + ',' +
           toText(ref.point->address) + ',' + (state.hasValue() ? valueText(*ref.point, state.value) : "") +
           ',' + toText(state.quality);
}

} // namespace host
