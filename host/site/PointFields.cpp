#include "PointFields.h"

#include "Number.h"

namespace host {

const std::vector<std::string> pointFieldNames = {
    "id", "name", "kind", "address", "format", "value", "second_address", "second_value", "pulse_ms"};

namespace {

constexpr unsigned highestPointId = firstHiddenNumber - 1;
constexpr unsigned longestPulseMs = 24 * 3'600'000;

// Reads the fields of one point. `good` turns false with the first finding.
class PointReader {
public:
    PointReader(const PointFields& pointFields, const Place& pointPlace, Findings& foundSoFar)
        : fields(pointFields), findings(foundSoFar) {
        point.place = pointPlace;
    }

    std::optional<Point> read() {
        readIdentity();
        readKindAndAddress();
        readFormat();
        readOutputs();
        return good ? std::optional<Point>(point) : std::nullopt;
    }

private:
    void refuse(const Place& place, const std::string& what, const std::string& remedy) {
        findings.error(place, what, remedy);
        good = false;
    }

    // Null for one that is left out or empty.
    const Field* find(const std::string& name) const {
        const auto found = fields.find(name);
        return found == fields.end() || found->second.text.empty() ? nullptr : &found->second;
    }

    const Field* need(const std::string& name, const std::string& remedy) {
        const Field* const field = find(name);
        if (field == nullptr) {
            const auto empty = fields.find(name);
            refuse(empty == fields.end() ? point.place : empty->second.place, "point without " + name,
                   remedy);
        }
        return field;
    }

    std::optional<unsigned> number(const std::string& name, unsigned lowest, unsigned highest) {
        const Field* const field = find(name);
        if (field == nullptr)
            return std::nullopt;
        const std::optional<unsigned> value = parseNumber(field->text, lowest, highest);
        if (value)
            return value;
        refuse(field->place, name + " \"" + field->text + "\" is out of range or no number",
               "give a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
        return std::nullopt;
    }

    std::optional<ElementAddress> address(const Field& field) {
        const ParsedAddress parsed = parseElementAddress(field.text);
        if (!parsed.address)
            refuse(field.place, parsed.what, parsed.remedy);
        return parsed.address;
    }

    void readIdentity() {
        if (need("id", "give a whole number, unique within the RTU") != nullptr)
            point.id = number("id", 0, highestPointId).value_or(0);
        if (const Field* const name = need("name", "give the point a name"))
            point.name = name->text;
    }

    void readKindAndAddress() {
        const std::string kindRemedy = "write status (I, O, F) or analog (R, T, C)";
        const Field* const kind = need("kind", kindRemedy);
        const bool kindIsKnown = kind != nullptr && (kind->text == "status" || kind->text == "analog");
        if (kind != nullptr && !kindIsKnown)
            refuse(kind->place, "kind \"" + kind->text + "\" is not known", kindRemedy);
        const bool analog = kindIsKnown && kind->text == "analog";
        point.kind = analog ? PointKind::Analog : PointKind::Status;

        const Field* const written = need("address", "give the element's address, such as R200");
        const std::optional<ElementAddress> parsed = written != nullptr ? address(*written) : std::nullopt;
        addressIsKnown = parsed.has_value();
        if (!parsed)
            return;
        point.address = *parsed;
        point.writtenAddress = written->text;
        if (kindIsKnown && analog == isBitMedia(parsed->media))
            refuse(written->place, "address " + toText(*parsed) + " does not fit kind " + kind->text,
                   analog ? "an analog point is a register, timer or counter (R, T, C); or write kind status"
                          : "a status point is an input, output or flag (I, O, F); or write kind analog");
    }

    void readFormat() {
        const Field* const format = find("format");
        if (format == nullptr || format->text == "integer")
            return;
        point.isFloat = format->text == "float";
        if (!point.isFloat)
            refuse(format->place, "format \"" + format->text + "\" is not known",
                   "write float, or leave it empty for an integer");
        else if (addressIsKnown && point.address.media != 'R')
            refuse(format->place, "format float on " + toText(point.address),
                   "only registers (R) hold floats: leave the format empty");
    }

    void readOutputs() {
        const char* const commandFields[] = {"value", "second_address", "second_value", "pulse_ms"};
        if (!addressIsKnown || isSwitchableMedia(point.address.media)) {
            readSwitchedOutputs();
            return;
        }
        for (const char* const name : commandFields)
            if (const Field* const field = find(name))
                refuse(field->place, std::string(name) + " on " + toText(point.address),
                       "only a status point on an output or flag (O, F) takes it: leave it empty");
    }

    void readSwitchedOutputs() {
        constexpr unsigned highestValue = 255; // a binary command writes one byte
        point.value = number("value", 0, highestValue);
        point.secondValue = number("second_value", 0, highestValue);
        point.pulseMs = number("pulse_ms", 1, longestPulseMs).value_or(0);
        const Field* const second = find("second_address");
        if (second == nullptr) {
            if (const Field* const secondValue = find("second_value"))
                refuse(secondValue->place, "second_value without second_address",
                       "give the second_address that it is written to, or leave it empty");
            return;
        }
        point.secondAddress = address(*second);
        if (point.secondAddress && !isSwitchableMedia(point.secondAddress->media))
            refuse(second->place, "second_address " + toText(*point.secondAddress) + " cannot be switched",
                   "give an output or flag (O, F)");
    }

    const PointFields& fields;
    Findings& findings;
    Point point;
    bool addressIsKnown = false;
    bool good = true;
};

} // namespace

std::optional<Point> readPoint(const PointFields& fields, const Place& place, Findings& findings) {
    return PointReader(fields, place, findings).read();
}

void PointIds::take(const PointFields& fields, const Place& place, Findings& findings) {
    const auto field = fields.find("id");
    const std::optional<unsigned> id =
        field == fields.end() ? std::nullopt : parseNumber(field->second.text, 0, highestPointId);
    if (!id)
        return;
    const auto name = fields.find("name");
    const auto [first, isNew] =
        takers.try_emplace(*id, Taker{name == fields.end() ? "" : name->second.text, place.line});
    if (isNew)
        return;
    const Taker& taker = first->second;
    findings.error(place,
                   "point id " + std::to_string(*id) + " is already taken " +
                       (taker.name.empty() ? "" : "by \"" + taker.name + "\" ") + "in line " +
                       std::to_string(taker.line),
                   "give each point of an RTU an id of its own");
}

} // namespace host
