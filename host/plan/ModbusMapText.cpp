#include "ModbusMapText.h"

#include "site/CsvText.h"
#include "site/PointValue.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

using Settings = ModbusSettings;

// One of the tables that a request can be for.
struct TableName {
    const char* text;
    unsigned firstReference;
};
constexpr TableName discreteInputs{"discrete input", 100'001};
constexpr TableName coils{"coil", 1};
constexpr TableName inputRegisters{"input register", 300'001};
constexpr TableName holdingRegisters{"holding register", 400'001};

namespace column {
enum Index : std::size_t {
    Unit,
    Table,
    Address,
    Reference,
    Count,
    Format,
    Access,
    QualityBit,
    ChannelName,
    RtuName,
    PointId,
    PointName,
    ValueUnit,
    count
};
} // namespace column
using Row = std::array<std::string, column::count>;

const Row heads = {"unit",    "table",   "address", "reference", "count", "format",    "access",
                   "quality", "channel", "rtu",     "id",        "name",  "value_unit"};

const char* formatOf(const Point& point) {
    return point.kind == PointKind::Status ? "bit" : isModbusFloat(point) ? "float32" : "int32";
}

std::string referenceText(const TableName& table, unsigned address) {
    const std::string digits = std::to_string(table.firstReference + address);
    return std::string(digits.size() < 6 ? 6 - digits.size() : 0, '0') + digits;
}

Row rowOf(const MappedPoint& one, const TableName& table, const char* access, const Settings& settings) {
    const Point& point = *one.point;
    const bool isAnalog = point.kind == PointKind::Analog;
    Row row;
    row[column::Unit] = one.unit == 0 ? "any" : std::to_string(one.unit);
    row[column::Table] = table.text;
    row[column::Address] = std::to_string(one.address);
    row[column::Reference] = referenceText(table, one.address);
    row[column::Count] = std::to_string(isAnalog ? registersOfValue : 1);
    row[column::Format] = formatOf(point);
    row[column::Access] = access;
    if (settings.quality == Settings::Quality::Bits)
        row[column::QualityBit] = std::to_string((isAnalog ? analogQuality : statusQuality) + one.address);
    row[column::ChannelName] = one.channel->name;
    row[column::RtuName] = one.rtu->name;
    row[column::PointId] = std::to_string(point.id);
    row[column::PointName] = point.name;
    row[column::ValueUnit] = unitOf(point);
    return row;
}

std::vector<Row> rowsOf(const ModbusMap& map, const Settings& settings) {
    std::vector<Row> rows;
    const char* const access = settings.takesWrites ? "read, write" : "read";
    for (const MappedPoint& one : map.points()) {
        const bool isAnalog = one.point->kind == PointKind::Analog;
        rows.push_back(rowOf(one, isAnalog ? inputRegisters : discreteInputs, "read", settings));
        if (isModbusWritable(*one.point))
            rows.push_back(rowOf(one, isAnalog ? holdingRegisters : coils, access, settings));
    }
    return rows;
}

// In characters; names may have letters of several bytes.
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    }));
}

bool isShown(std::size_t index, const Settings& settings) {
    return index != column::QualityBit || settings.quality == Settings::Quality::Bits;
}

std::string headLine(const Settings& settings) {
    return std::string("Modbus TCP on ") + toText(settings.listen) + ", " +
           (settings.takesWrites ? "with writes" : "read only") + ", of 32-bit values the " +
           (settings.wordOrder == Settings::WordOrder::HighFirst ? "upper" : "lower") +
           " half first; a value that is not good " +
           (settings.quality == Settings::Quality::Bits ? "has its quality bit at 0\n"
                                                        : "is answered with exception 0x0B\n");
}

void appendLine(std::string& text, const Row& row, const std::array<std::size_t, column::count>& widths,
                const Settings& settings) {
    std::string line;
    for (std::size_t i = 0; i < column::count; ++i) {
        if (!isShown(i, settings))
            continue;
        line += row[i];
        line.append(widths[i] - widthOf(row[i]) + 2, ' ');
    }
    text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
}

void appendCsvLine(std::string& text, const Row& row) {
    for (std::size_t i = 0; i < column::count; ++i) {
        text += i == 0 ? "" : ",";
        appendCsvText(text, row[i]);
    }
    text += '\n';
}

} // namespace

std::string modbusMapTable(const ModbusMap& map, const ModbusSettings& settings) {
    std::vector<Row> rows = rowsOf(map, settings);
    rows.insert(rows.begin(), heads);
    std::array<std::size_t, column::count> widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < column::count; ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    std::string text = headLine(settings);
    for (const Row& row : rows)
        appendLine(text, row, widths, settings);
    return text;
}

std::string modbusMapCsv(const ModbusMap& map, const ModbusSettings& settings) {
    std::string text;
    appendCsvLine(text, heads);
    for (const Row& row : rowsOf(map, settings))
        appendCsvLine(text, row);
    return text;
}

} // namespace host
