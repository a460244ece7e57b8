#include "SiteFile.h"

#include "ControlTable.h"
#include "HistoryTable.h"
#include "HttpTable.h"
#include "ModbusTable.h"
#include "MqttTable.h"
#include "PointFields.h"
#include "PointTableFile.h"
#include "SiteChecks.h"
#include "StationKeys.h"
#include "TomlTable.h"

#include <TomlShape.h>

#include <array>
#include <filesystem>

namespace host {

namespace {

const std::string idRemedy = "give a whole number above 0";
const std::string nameRemedy = "write a name in quotes";
const std::string siteNameRemedy = "write a name in quotes, without \"/\", \"+\" and \"#\"";
const std::string typeRemedy = "write \"SBus-Ethernet\" or \"SBus-Serial\"";
constexpr int highestId = 0x7FFF'FFFF;

constexpr std::uintmax_t megabyte = 1'048'576;
constexpr std::uintmax_t largestSiteFile = 64 * megabyte;
constexpr std::uintmax_t largestPointTable = 512 * megabyte; // ten million points

text::FileText readTableFile(const std::string& path) {
    return text::readTextFile(path, largestPointTable);
}

class SiteReader {
public:
    SiteReader(const std::string& siteFile, const FileReader& fileReader)
        : file(siteFile), readFile(fileReader) {}

    LoadedSite read(const std::string& text) {
        if (const std::optional<text::ShapeFault> fault = text::findTomlShapeFault(text))
            loaded.findings.error({file, fault->line, fault->column}, fault->what, fault->remedy);
        else
            parse(text);
        loaded.findings.finish();
        return std::move(loaded);
    }

private:
    void parse(const std::string& text) {
        try {
            const toml::table root = toml::parse(text, file);
            readRoot(root);
        } catch (const toml::parse_error& failure) {
            const toml::source_position at = failure.source().begin;
            loaded.findings.error({file, at.line, at.column}, std::string(failure.description()),
                                  "correct the line; what follows it was not looked at");
        }
    }

    void readRoot(const toml::table& root) {
        TomlTable table(root, file, loaded.findings);
        table.need("channel", "describe each line in a [[channel]] table");
        for (const toml::table* const one : table.tables("channel"))
            readChannel(*one);
        loaded.site.name = readSiteName(table);
        loaded.site.control = readControlTable(table, file, loaded.findings);
        loaded.site.modbus = readModbusTable(table, file, loaded.findings);
        loaded.site.mqtt = readMqttTable(table, file, loaded.findings);
        loaded.site.http = readHttpTable(table, file, loaded.findings);
        loaded.site.history = readHistoryTable(table, file, loaded.findings);
        table.rejectUnknownKeys();
        checkSite(loaded.site, loaded.findings);
    }

    // It becomes one level of an MQTT topic, in which these characters have a meaning.
    std::string readSiteName(TomlTable& table) {
        const std::optional<Field> field = table.text("site", siteNameRemedy);
        if (!field)
            return std::filesystem::u8path(file).stem().u8string();
        if (field->text.find_first_of("/+#") != std::string::npos)
            loaded.findings.error(field->place, "site \"" + field->text + "\" is no name for a site",
                                  siteNameRemedy);
        return field->text;
    }

    void readChannel(const toml::table& source) {
        TomlTable table(source, file, loaded.findings);
        Channel channel;
        channel.place = table.place();
        table.need("id", idRemedy);
        channel.id = static_cast<int>(table.integer("id", 1, highestId).value_or(0));
        if (channel.id > 0)
            channel.place = table.placeOf("id");
        channel.name = readName(table, "channel-" + std::to_string(channel.id));
        const bool typeIsKnown = readType(table, channel);
        table.need("primary", "give the line, such as \"udp://192.168.10.5:5050\"");
        if (const std::optional<LinkEnd> end = readLink(table, "primary", channel, typeIsKnown))
            channel.primary = *end;
        channel.secondary = readLink(table, "secondary", channel, typeIsKnown);
        channel.expectedAnswer = table.duration("expected_answer");

        LineSettings lineSettings;
        for (const toml::table* const one : table.tables("rtu"))
            readRtu(*one, channel, lineSettings);
        table.rejectUnknownKeys();
        if (channel.type == LineType::Serial)
            unifyLineSettings(channel, lineSettings, loaded.findings);
        loaded.site.channels.push_back(std::move(channel));
    }

    std::string readName(TomlTable& table, const std::string& name) {
        const std::optional<Field> field = table.text("name", nameRemedy);
        return field ? field->text : name;
    }

    bool readType(TomlTable& table, Channel& channel) {
        table.need("type", typeRemedy);
        const std::optional<Field> type = table.text("type", typeRemedy);
        if (!type)
            return false;
        for (const LineType known : {LineType::Serial, LineType::Ethernet}) {
            channel.type = known;
            if (type->text == toText(known))
                return true;
        }
        loaded.findings.error(type->place, "type \"" + type->text + "\" is not known", typeRemedy);
        return false;
    }

    std::optional<LinkEnd> readLink(TomlTable& table, const std::string& key, const Channel& channel,
                                    bool typeIsKnown) {
        const std::optional<Field> url =
            table.text(key, "give the line as a text, such as \"udp://HOST:5050\"");
        if (!url)
            return std::nullopt;
        const ParsedLink link = parseLinkUrl(url->text);
        for (const LinkFault& fault : link.faults)
            loaded.findings.error(url->place, fault.what, fault.remedy);
        if (link.end && typeIsKnown &&
            (channel.type == LineType::Serial) != std::holds_alternative<SerialEnd>(*link.end)) {
            const bool serial = channel.type == LineType::Serial;
            loaded.findings.error(url->place,
                                  key + " \"" + url->text + "\" does not fit type " + toText(channel.type),
                                  serial ? "give serial:DEVICE?baud=N, or type \"SBus-Ethernet\""
                                         : "give udp://HOST:PORT, or type \"SBus-Serial\"");
        }
        return link.end;
    }

    void readRtu(const toml::table& source, Channel& channel, LineSettings& lineSettings) {
        constexpr long long highestStation = 255; // one byte in the telegram
        TomlTable table(source, file, loaded.findings);
        Rtu rtu;
        rtu.place = table.place();
        table.need("id", idRemedy);
        rtu.id = static_cast<int>(table.integer("id", 1, highestId).value_or(0));
        if (rtu.id > 0)
            rtu.place = table.placeOf("id");
        rtu.name = readName(table, "rtu-" + std::to_string(rtu.id));
        rtu.enabled = table.flag("enabled").value_or(true);
        table.need("station", "give the controller's S-Bus station number, 0 to 255");
        rtu.station = static_cast<unsigned>(table.integer("station", 0, highestStation).value_or(0));
        rtu.timeout = table.duration("timeout").value_or(rtu.timeout);
        rtu.timeSync = table.duration("time_sync");
        lineSettings.push_back(readLineSetting(table, rtu));
        readScan(table, rtu);
        readStationKeys(table, rtu, loaded.findings);
        readPoints(table, rtu);
        table.rejectUnknownKeys();
        channel.rtus.push_back(std::move(rtu));
    }

    LineSetting readLineSetting(TomlTable& table, Rtu& rtu) {
        constexpr long long longestBreakMs = 1'000;
        const std::string remedy = "write \"data\" or \"break\"";
        LineSetting setting;
        if (const std::optional<Field> type = table.text("transmit_type", remedy)) {
            rtu.transmitType = type->text == "break" ? TransmitType::Break : TransmitType::Data;
            if (type->text == "data" || type->text == "break")
                setting.transmitType = type->place;
            else
                loaded.findings.error(type->place, "transmit_type \"" + type->text + "\" is not known",
                                      remedy);
        }
        if (const std::optional<long long> delay = table.integer("break_delay", 0, longestBreakMs)) {
            setting.breakDelay = table.placeOf("break_delay");
            rtu.breakDelayMs = static_cast<unsigned>(*delay);
        }
        return setting;
    }

    void readScan(TomlTable& table, Rtu& rtu) {
        const toml::table* const source = table.subTable("scan");
        if (source == nullptr)
            return;
        TomlTable scan(*source, file, loaded.findings);
        rtu.scan.integrity = scan.duration("integrity").value_or(rtu.scan.integrity);
        rtu.scan.status = scan.duration("status").value_or(rtu.scan.status);
        rtu.scan.analog = scan.duration("analog").value_or(rtu.scan.analog);
        scan.rejectUnknownKeys();
    }

    void readPoints(TomlTable& table, Rtu& rtu) {
        const std::optional<Field> csv = table.text(
            "points", "name the point table's file in quotes, or write [[channel.rtu.point]] tables");
        if (csv && table.has("point"))
            loaded.findings.error(csv->place, "points and [[channel.rtu.point]] tables in one RTU",
                                  "keep one of the two");
        const IgnoredColumns ignored =
            table.texts("ignore", "list the columns' names: ignore = [\"location\", \"remark\"]");
        if (table.has("ignore") && !table.has("points"))
            loaded.findings.error(table.placeOf("ignore"), "ignore without a point table",
                                  "name the table's file with points, or leave ignore out");
        if (csv)
            readCsvPoints(*csv, ignored, rtu);
        if (!csv)
            rtu.pointFile = file;
        PointIds ids;
        EngineeringPool pool;
        for (const toml::table* const one : table.tables("point"))
            readInlinePoint(*one, rtu, ids, pool);
    }

    void readCsvPoints(const Field& csv, const IgnoredColumns& ignored, Rtu& rtu) {
        const std::filesystem::path directory = std::filesystem::u8path(file).parent_path();
        const std::string path = (directory / std::filesystem::u8path(csv.text)).generic_u8string();
        rtu.pointFile = path;
        text::FileText table = readFile(path);
        if (table.contents)
            rtu.points = readPointTable(std::move(*table.contents), path, ignored, loaded.findings);
        else
            loaded.findings.error(csv.place, "point table \"" + path + "\" " + table.fault,
                                  "name a file that can be read, relative to the site file");
    }

    void readInlinePoint(const toml::table& source, Rtu& rtu, PointIds& ids, EngineeringPool& pool) {
        TomlTable table(source, file, loaded.findings);
        std::array<Cell, pointFieldCount> cells;
        PointFields fields{};
        for (std::size_t i = 0; i < pointFieldCount; ++i)
            if (const std::optional<Field> field = table.textOrNumber(pointColumns[i].name)) {
                cells[i] = {field->text, {field->place.line, field->place.column}};
                fields[i] = &cells[i];
            }
        table.rejectUnknownKeys();
        const PointPlace place{file, {table.place().line, table.place().column}};
        ids.take(fields, place, loaded.findings);
        if (std::optional<Point> point = readPoint(fields, place, pool, loaded.findings))
            rtu.points.push_back(std::move(*point));
    }

    const std::string& file;
    const FileReader& readFile;
    LoadedSite loaded;
};

} // namespace

LoadedSite readSite(const std::string& text, const std::string& file, const FileReader& readFile) {
    return SiteReader(file, readFile).read(text);
}

ControlSettings loadControlSettings(const std::string& path) {
    Findings findings;
    const std::string contents = text::readTextFile(path, largestSiteFile).contents.value_or(std::string());
    if (text::findTomlShapeFault(contents))
        return {};
    try {
        const toml::table root = toml::parse(contents, path);
        TomlTable table(root, path, findings);
        return readControlTable(table, path, findings);
    } catch (const toml::parse_error&) {
        return {};
    }
}

LoadedSite loadSite(const std::string& path) {
    const text::FileText site = text::readTextFile(path, largestSiteFile);
    if (site.contents)
        return readSite(*site.contents, path, readTableFile);
    LoadedSite loaded;
    loaded.findings.error({path}, site.fault, "name a site file that can be read");
    return loaded;
}

} // namespace host
