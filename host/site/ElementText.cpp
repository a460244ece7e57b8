#include "ElementText.h"

#include "Decimal.h"
#include "FloatRange.h"
#include "Number.h"
#include "SwitchWord.h"
#include "WordRange.h"

#include <algorithm>

namespace host {

namespace {

const std::string rangeMark = "..";
const std::string floatSuffix = ":float";
const std::string ieeeSuffix = ":ieee";
const std::string readRemedy = "write addresses such as R10, R10..20, R30:float, F5 or I0..15";
const std::string writeRemedy = "write ADDRESS=VALUE, such as O200=1, R10=12, R30:float=1.5 or T5=100";

// Takes the suffix off the end of `text`, where it stands.
bool takeSuffix(std::string& text, const std::string& suffix) {
    const bool found =
        text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
    if (found)
        text.resize(text.size() - suffix.size());
    return found;
}

// In which format a register is read or written.
struct Format {
    bool isFloat = false;
    bool isIeee = false;
};

Format takeFormat(std::string& text) {
    Format format;
    format.isFloat = takeSuffix(text, floatSuffix);
    format.isIeee = !format.isFloat && takeSuffix(text, ieeeSuffix);
    return format;
}

std::string formatFault(const std::string& text, const Format& format, const ElementAddress& address) {
    return (format.isFloat || format.isIeee) && address.media != 'R'
               ? "\"" + text + "\": only registers (R) hold floating-point values"
               : std::string();
}

ParsedReads refuseReads(const std::string& what, const std::string& remedy) {
    return {{}, what, remedy};
}

ParsedWrite refuseWrite(const std::string& what, const std::string& remedy) {
    return {{}, what, remedy};
}

std::string floatValueFault(double value) {
    const std::string format = " for the controller's floating-point format, which ";
    switch (floatFitOf(value)) {
    case FloatFit::TooLarge:
        return "is too large" + format + "ends at " + largestFloatText;
    case FloatFit::TooSmall:
        return "is too close to 0" + format + "begins at " + smallestFloatText;
    case FloatFit::Fits:
        break;
    }
    return {};
}

std::string ieeeValueFault(double value) {
    switch (singleFitOf(value)) {
    case FloatFit::TooLarge:
        return std::string("is too large for single precision, which ends at ") + largestSingleText;
    case FloatFit::TooSmall:
        return std::string("is too close to 0 for single precision, which begins at ") + smallestSingleText;
    case FloatFit::Fits:
        break;
    }
    return {};
}

ParsedWrite parseFloatValue(ElementWrite write, const std::string& text, const std::string& value) {
    const std::optional<double> number = parseDecimal(value);
    if (!number)
        return refuseWrite("\"" + text + "\": \"" + value + "\" is no number", writeRemedy);
    const std::string fault = write.isFloat ? floatValueFault(*number) : ieeeValueFault(*number);
    if (!fault.empty())
        return refuseWrite("\"" + text + "\": " + value + " " + fault,
                           "give a value within the format, or 0");
    write.value = *number;
    return {write, {}, {}};
}

ParsedWrite parseIntegerValue(ElementWrite write, const std::string& text, const std::string& value) {
    const std::optional<bool> word = parseSwitchWord(value);
    if (isBitMedia(write.address.media) && word) {
        write.value = *word ? 1 : 0;
        return {write, {}, {}};
    }
    const WordRange range = wordRangeOf(write.address.media);
    const std::optional<long long> number = parseNumber<long long>(value, range.lowest, range.highest);
    if (number) {
        write.value = static_cast<double>(*number);
        return {write, {}, {}};
    }
    std::string remedy =
        toText(write.address) + " takes " +
        (isBitMedia(write.address.media)
             ? "0 or 1, off or on"
             : "whole numbers from " + std::to_string(range.lowest) + " to " + std::to_string(range.highest));
    if (write.address.media == 'R' && parseDecimal(value))
        remedy += "; for a floating-point value write " + toText(write.address) + floatSuffix + "=VALUE";
    return refuseWrite("\"" + text + "\": value \"" + value + "\" is no number that fits", remedy);
}

} // namespace

ParsedReads parseElementReads(const std::string& text) {
    std::string rest = text;
    const Format format = takeFormat(rest);
    const std::size_t mark = rest.find(rangeMark);
    const ParsedAddress first = parseElementAddress(rest.substr(0, mark));
    if (!first.address)
        return refuseReads(first.what, readRemedy);
    unsigned last = first.address->number;
    if (mark != std::string::npos) {
        const std::string end = rest.substr(mark + rangeMark.size());
        const std::optional<unsigned> number = parseNumber(end, last, highestElement);
        if (!number)
            return refuseReads("range \"" + text + "\": \"" + end + "\" is no element number from " +
                                   std::to_string(last) + " to " + std::to_string(highestElement),
                               "write the last element's number behind the two points, such as R10..20");
        last = *number;
    }
    const std::string fault = formatFault(text, format, *first.address);
    if (!fault.empty())
        return refuseReads(fault, readRemedy);
    ParsedReads parsed;
    for (unsigned number = first.address->number; number <= last; ++number)
        parsed.elements.push_back({{first.address->media, number}, format.isFloat, format.isIeee});
    return parsed;
}

ParsedWrite parseElementWrite(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        return refuseWrite("\"" + text + "\" gives no value", writeRemedy);
    std::string target = text.substr(0, equals);
    const Format format = takeFormat(target);
    if (target.find(rangeMark) != std::string::npos)
        return refuseWrite("\"" + text + "\": a value goes to one element",
                           "give each element of the range its own ADDRESS=VALUE");
    const ParsedAddress address = parseElementAddress(target);
    if (!address.address)
        return refuseWrite(address.what, writeRemedy);
    if (address.address->media == 'I')
        return refuseWrite("\"" + text + "\": inputs (I) are read only",
                           "write outputs, flags, registers, timers or counters (O, F, R, T, C)");
    const std::string fault = formatFault(text, format, *address.address);
    if (!fault.empty())
        return refuseWrite(fault, writeRemedy);
    const std::string value = text.substr(equals + 1);
    const ElementWrite write{*address.address, format.isFloat, 0, format.isIeee};
    return format.isFloat || format.isIeee ? parseFloatValue(write, text, value)
                                           : parseIntegerValue(write, text, value);
}

} // namespace host
