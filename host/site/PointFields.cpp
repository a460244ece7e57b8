#include "PointFields.h"

#include "AnyCase.h"
#include "Decimal.h"
#include "Number.h"
#include "NumberText.h"

#include <ControlCharacters.h>

#include <algorithm>
#include <cmath>

namespace host {

const std::array<PointColumn, pointFieldCount> pointColumns = {{{"id", true},
                                                                {"name", false},
                                                                {"kind", false},
                                                                {"address", false},
                                                                {"format", false},
                                                                {"value", true},
                                                                {"second_address", false},
                                                                {"second_value", true},
                                                                {"pulse_ms", true},
                                                                {"scale", true},
                                                                {"offset", true},
                                                                {"unit", false},
                                                                {"decimals", true},
                                                                {"deadband", true},
                                                                {"description", false},
                                                                {"modbus", true}}};

namespace {

constexpr unsigned highestPointId = firstHiddenNumber - 1;
constexpr unsigned longestPulseMs = 24 * 3'600'000;
constexpr unsigned mostDecimals = 9; // a register has ten digits
// Of scales and offsets: with any number of a controller the value stays a finite one, and not 0.
constexpr double smallestFactor = 1e-30;
constexpr double largestFactor = 1e30;
// An offset beyond that leaves a value too few digits to tell two steps of the scale apart.
constexpr double mostStepsOfOffset = 1e9;

const std::string& nameOf(PointField field) {
    return pointColumns[static_cast<std::size_t>(field)].name;
}

bool isPlain(const std::string& written, const ElementAddress& address) {
    return written == toText(address);
}

const Cell* cellOf(const PointFields& fields, PointField field) {
    return fields[static_cast<std::size_t>(field)];
}

// Reads the fields of one point. `good` turns false with the first finding.
class PointReader {
public:
    PointReader(const PointFields& pointFields, const PointPlace& pointPlace,
                EngineeringPool& engineeringPool, Findings& foundSoFar)
        : fields(pointFields), file(pointPlace.file), pool(engineeringPool), findings(foundSoFar) {
        point.spot = pointPlace.spot;
    }

    std::optional<Point> read() {
        readIdentity();
        readKindAndAddress();
        readFormat();
        readOutputs();
        readEngineering();
        readDescription();
        readModbus();
        return good ? std::optional<Point>(std::move(point)) : std::nullopt;
    }

private:
    void refuse(const Spot& spot, const std::string& what, const std::string& remedy) {
        findings.error({file, spot.line, spot.column}, what, remedy);
        good = false;
    }

    // Null for one that is left out or empty.
    const Cell* find(PointField field) const {
        const Cell* const cell = cellOf(fields, field);
        return cell == nullptr || cell->text.empty() ? nullptr : cell;
    }

    const Cell* need(PointField field, const char* remedy) {
        const Cell* const cell = find(field);
        if (cell == nullptr) {
            const Cell* const empty = cellOf(fields, field);
            refuse(empty == nullptr ? point.spot : empty->spot, "point without " + nameOf(field), remedy);
        }
        return cell;
    }

    std::optional<unsigned> number(PointField field, unsigned lowest, unsigned highest) {
        const Cell* const cell = find(field);
        if (cell == nullptr)
            return std::nullopt;
        const std::optional<unsigned> value = parseNumber(cell->text, lowest, highest);
        if (value)
            return value;
        refuse(cell->spot, nameOf(field) + " \"" + cell->text + "\" is out of range or no number",
               "give a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
        return std::nullopt;
    }

    // Any number; its size is at most `largest`.
    std::optional<double> decimal(PointField field, double largest, const std::string& remedy) {
        const Cell* const cell = find(field);
        if (cell == nullptr)
            return std::nullopt;
        const std::optional<double> value = parseDecimal(cell->text);
        if (value && std::fabs(*value) <= largest)
            return value;
        refuse(cell->spot, nameOf(field) + " \"" + cell->text + "\" is out of range or no number", remedy);
        return std::nullopt;
    }

    // What a binary command writes: one byte.
    std::optional<std::uint8_t> byte(PointField field) {
        const std::optional<unsigned> value = number(field, 0, 255);
        return value ? std::optional(static_cast<std::uint8_t>(*value)) : std::nullopt;
    }

    std::optional<ElementAddress> address(const Cell& cell) {
        const ParsedAddress parsed = parseElementAddress(cell.text);
        if (!parsed.address)
            refuse(cell.spot, parsed.what, parsed.remedy);
        return parsed.address;
    }

    void readIdentity() {
        if (need(PointField::Id, "give a whole number, unique within the RTU") != nullptr)
            point.id = number(PointField::Id, 0, highestPointId).value_or(0);
        if (const Cell* const name = need(PointField::Name, "give the point a name"))
            readName(*name);
    }

    void readName(const Cell& name) {
        if (isShowable(name, PointField::Name))
            point.name = name.text;
    }

    bool isShowable(const Cell& cell, PointField field) {
        const std::size_t control = text::findControl(cell.text);
        if (control != std::string::npos)
            refuse(cell.spot,
                   nameOf(field) + " with control character " + text::controlName(cell.text, control) +
                       ": \"" + cell.text + "\"",
                   "take it out; a " + nameOf(field) + " is one line of what can be shown");
        return control == std::string::npos;
    }

    void readKindAndAddress() {
        const char* const kindRemedy = "write status (I, O, F) or analog (R, T, C)";
        const Cell* const kind = need(PointField::Kind, kindRemedy);
        const bool analog = kind != nullptr && isSameInAnyCase(kind->text, "analog");
        const bool kindIsKnown = analog || (kind != nullptr && isSameInAnyCase(kind->text, "status"));
        if (kind != nullptr && !kindIsKnown)
            refuse(kind->spot, "kind \"" + kind->text + "\" is not known", kindRemedy);
        point.kind = analog ? PointKind::Analog : PointKind::Status;

        const Cell* const written = need(PointField::Address, "give the element's address, such as R200");
        const std::optional<ElementAddress> parsed = written != nullptr ? address(*written) : std::nullopt;
        addressIsKnown = parsed.has_value();
        if (!parsed)
            return;
        point.address = *parsed;
        if (!isPlain(written->text, *parsed))
            point.writtenAddress = std::make_shared<const std::string>(written->text);
        if (kindIsKnown && analog == isBitMedia(parsed->media))
            refuse(written->spot, "address " + toText(*parsed) + " does not fit kind " + lowered(kind->text),
                   analog ? "an analog point is a register, timer or counter (R, T, C); or write kind status"
                          : "a status point is an input, output or flag (I, O, F); or write kind analog");
    }

    void readFormat() {
        const Cell* const format = find(PointField::Format);
        if (format == nullptr || isSameInAnyCase(format->text, "integer"))
            return;
        point.isFloat = isSameInAnyCase(format->text, "float");
        point.isIeee = isSameInAnyCase(format->text, "ieee");
        if (!point.isFloat && !point.isIeee)
            refuse(
                format->spot, "format \"" + format->text + "\" is not known",
                "write float for the controller's own floating-point format, ieee for IEEE 754, or leave it "
                "empty for an integer");
        else if (addressIsKnown && point.address.media != 'R')
            refuse(format->spot, "format " + lowered(format->text) + " on " + toText(point.address),
                   "only registers (R) hold floats: leave the format empty");
    }

    void readOutputs() {
        const PointField commandFields[] = {PointField::Value, PointField::SecondAddress,
                                            PointField::SecondValue, PointField::PulseMs};
        if (!addressIsKnown || isSwitchableMedia(point.address.media)) {
            readSwitchedOutputs();
            return;
        }
        for (const PointField field : commandFields)
            if (const Cell* const cell = find(field))
                refuse(cell->spot, nameOf(field) + " on " + toText(point.address),
                       "only a status point on an output or flag (O, F) takes it: leave it empty");
    }

    void readSwitchedOutputs() {
        point.value = byte(PointField::Value);
        point.secondValue = byte(PointField::SecondValue);
        point.pulseMs = number(PointField::PulseMs, 1, longestPulseMs).value_or(0);
        const Cell* const second = find(PointField::SecondAddress);
        if (second == nullptr) {
            if (const Cell* const secondValue = find(PointField::SecondValue))
                refuse(secondValue->spot, "second_value without second_address",
                       "give the second_address that it is written to, or leave it empty");
            return;
        }
        point.secondAddress = address(*second);
        if (point.secondAddress && !isSwitchableMedia(point.secondAddress->media))
            refuse(second->spot, "second_address " + toText(*point.secondAddress) + " cannot be switched",
                   "give an output or flag (O, F)");
    }

    void readEngineering() {
        const PointField valueFields[] = {PointField::Scale, PointField::Offset, PointField::Unit,
                                          PointField::Decimals, PointField::Deadband};
        if (!addressIsKnown || !isBitMedia(point.address.media)) {
            readValueFields();
            return;
        }
        for (const PointField field : valueFields)
            if (const Cell* const cell = find(field))
                refuse(cell->spot, nameOf(field) + " on " + toText(point.address),
                       "only an analog point (R, T, C) takes it: leave it empty");
    }

    void readValueFields() {
        Engineering engineering;
        engineering.scaling = readScaling();
        const Cell* const unit = find(PointField::Unit);
        if (unit != nullptr && isShowable(*unit, PointField::Unit))
            engineering.unit = unit->text;
        if (const auto decimals = number(PointField::Decimals, 0, mostDecimals))
            engineering.decimals = static_cast<std::uint8_t>(*decimals);
        const std::string remedy = "give a number from 0 on, the smallest change of the value that matters";
        engineering.deadband = decimal(PointField::Deadband, largestFactor, remedy).value_or(0);
        if (engineering.deadband < 0)
            refuse(find(PointField::Deadband)->spot, "deadband below 0", remedy);
        if (good)
            point.engineering = pool.take(std::move(engineering));
    }

    Scaling readScaling() {
        const std::string remedy = "give a number up to 1e30, such as 0.1, for value = raw x scale + offset";
        const double scale = decimal(PointField::Scale, largestFactor, remedy).value_or(1);
        const double offset = decimal(PointField::Offset, largestFactor, remedy).value_or(0);
        if (std::fabs(scale) < smallestFactor) {
            refuse(find(PointField::Scale)->spot, scale == 0 ? "scale 0" : "scale too close to 0",
                   "give another number from 1e-30 on; with 0 every value would be the same");
            return {};
        }
        if (std::fabs(offset) > std::fabs(scale) * mostStepsOfOffset)
            refuse(find(PointField::Offset)->spot,
                   "offset " + numberText(offset) + " is too large beside scale " + numberText(scale),
                   "give one of at most 1e9 times the scale; steps of the scale get lost beyond");
        return {scale, offset};
    }

    // Spreadsheets have cells of several lines.
    void readDescription() {
        const Cell* const cell = find(PointField::Description);
        if (cell == nullptr)
            return;
        std::string description = cell->text;
        std::replace_if(
            description.begin(), description.end(),
            [](char letter) { return letter == '\n' || letter == '\r' || letter == '\t'; }, ' ');
        if (isShowable({description, cell->spot}, PointField::Description))
            point.description = std::make_shared<const std::string>(std::move(description));
    }

    // A value takes two registers, the second of which has to be there.
    void readModbus() {
        const unsigned highest = point.kind == PointKind::Analog ? 65'534 : 65'535;
        if (const std::optional<unsigned> address = number(PointField::Modbus, 0, highest))
            point.modbus = static_cast<std::uint16_t>(*address);
    }

    const PointFields& fields;
    const std::string& file;
    EngineeringPool& pool;
    Findings& findings;
    Point point;
    bool addressIsKnown = false;
    bool good = true;
};

} // namespace

std::optional<Point> readPoint(const PointFields& fields, const PointPlace& place, EngineeringPool& pool,
                               Findings& findings) {
    return PointReader(fields, place, pool, findings).read();
}

void PointIds::reserve(std::size_t expected) {
    takers.reserve(expected);
    index.reserve(expected);
}

void PointIds::take(const PointFields& fields, const PointPlace& place, Findings& findings) {
    const Cell* const cell = cellOf(fields, PointField::Id);
    const std::optional<unsigned> id =
        cell == nullptr ? std::nullopt : parseNumber(cell->text, 0, highestPointId);
    if (!id)
        return;
    const auto number = static_cast<std::uint32_t>(takers.size());
    const std::optional<std::uint32_t> first =
        index.findOrTake(*id, number, [&](std::uint32_t taker) { return takers[taker].id == *id; });
    if (!first) {
        if (const Cell* const name = cellOf(fields, PointField::Name))
            names += name->text;
        takers.push_back({*id, place.spot.line, names.size()});
        return;
    }
    const std::string name = nameOf(*first);
    findings.error({place.file, place.spot.line, place.spot.column},
                   "point id " + std::to_string(*id) + " is already taken " +
                       (name.empty() ? "" : "by \"" + name + "\" ") + "in line " +
                       std::to_string(takers[*first].line),
                   "give each point of an RTU an id of its own");
}

std::string PointIds::nameOf(std::uint32_t taker) const {
    const std::size_t start = taker == 0 ? 0 : takers[taker - 1].nameEnd;
    return names.substr(start, takers[taker].nameEnd - start);
}

} // namespace host
