#include "ChangeText.h"

#include "ValueText.h"
#include "site/CsvText.h"
#include "site/PointValue.h"

#include <charconv>

namespace host {

const char* const changeCsvHeader = "time,channel,rtu,id,name,address,value,quality,unit";

namespace {

void appendNumber(std::string& text, unsigned number) {
    char digits[10]; // as many as the highest number has
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void appendAddress(std::string& text, const ElementAddress& address) {
    text += address.media;
    appendNumber(text, address.number);
}

void appendJsonText(std::string& text, const std::string& utf8) {
    const char* const digits = "0123456789abcdef";
    text += '"';
    for (const char character : utf8) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x20) {
            if (character == '"' || character == '\\')
                text += '\\';
            text += character;
        } else {
            text += "\\u00";
            text += digits[code >> 4];
            text += digits[code & 0xF];
        }
    }
    text += '"';
}

void appendUnit(std::string& text, const Point& point) {
    const std::string& unit = unitOf(point);
    if (unit.empty())
        return;
    text += ' ';
    text += unit;
}

// The value, and of points whose value is not the number in the controller what belongs to it.
void appendJsonValue(std::string& text, const Point& point, const PointState& state) {
    if (state.hasValue() && isNumber(point, state.value)) // JSON knows no infinity
        appendValue(text, point, state.value);
    else
        text += "null";
    if (const std::string& unit = unitOf(point); !unit.empty()) {
        text += ",\"unit\":";
        appendJsonText(text, unit);
    }
    if (!hasRaw(point))
        return;
    text += ",\"raw\":";
    if (state.hasValue())
        appendRaw(text, point, state.value);
    else
        text += "null";
}

// What the texts of all points of an RTU have in common, made anew only where another RTU follows.
class RtuPart {
public:
    template <typename Make>
    const std::string& of(const PointRef& ref, Make make) {
        if (rtu != ref.rtu) {
            rtu = ref.rtu;
            text.clear();
            make(text);
        }
        return text;
    }

private:
    const Rtu* rtu = nullptr;
    std::string text;
};

class LineText : public ChangeText {
public:
    void append(std::string& text, const PointRef& ref, const PointState& state) override {
        text += time.of(state.changeTimeMs);
        text += "  ";
        text += ref.rtu->name;
        text += '/';
        text += ref.point->name;
        text += " (";
        appendAddress(text, ref.point->address);
        text += ')';
        if (state.hasValue()) {
            text += " = ";
            appendValue(text, *ref.point, state.value);
            appendUnit(text, *ref.point);
        }
        text += "  ";
        text += toText(state.quality);
    }

private:
    TimeText time{localTimeText};
};

class JsonText : public ChangeText {
public:
    void append(std::string& text, const PointRef& ref, const PointState& state) override {
        text += "{\"time\":\"";
        text += time.of(state.changeTimeMs);
        text += rtuPart.of(ref, [&ref](std::string& part) {
            part += "\",\"channel\":";
            appendJsonText(part, ref.channel->name);
            part += ",\"rtu\":";
            appendJsonText(part, ref.rtu->name);
            part += ",\"id\":";
        });
        appendNumber(text, ref.point->id);
        text += ",\"name\":";
        appendJsonText(text, ref.point->name);
        text += ",\"address\":\"";
        appendAddress(text, ref.point->address);
        text += "\",\"value\":";
        appendJsonValue(text, *ref.point, state);
        text += ",\"quality\":\"";
        text += toText(state.quality);
        text += "\"}";
    }

private:
    TimeText time{utcTimeText};
    RtuPart rtuPart;
};

class CsvText : public ChangeText {
public:
    void append(std::string& text, const PointRef& ref, const PointState& state) override {
        text += time.of(state.changeTimeMs);
        text += rtuPart.of(ref, [&ref](std::string& part) {
            part += ',';
            appendCsvText(part, ref.channel->name);
            part += ',';
            appendCsvText(part, ref.rtu->name);
            part += ',';
        });
        appendNumber(text, ref.point->id);
        text += ',';
        appendCsvText(text, ref.point->name);
        text += ',';
        appendAddress(text, ref.point->address);
        text += ',';
        if (state.hasValue())
            appendValue(text, *ref.point, state.value);
        text += ',';
        text += toText(state.quality);
        text += ',';
        appendCsvText(text, unitOf(*ref.point));
    }

private:
    TimeText time{utcTimeText};
    RtuPart rtuPart;
};

} // namespace

std::unique_ptr<ChangeText> makeLineText() {
    return std::make_unique<LineText>();
}

std::unique_ptr<ChangeText> makeJsonText() {
    return std::make_unique<JsonText>();
}

std::unique_ptr<ChangeText> makeCsvText() {
    return std::make_unique<CsvText>();
}

std::string jsonText(const std::string& utf8) {
    std::string text;
    appendJsonText(text, utf8);
    return text;
}

} // namespace host
