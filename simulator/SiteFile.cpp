#include "SiteFile.h"

#include "Request.h"

#include <filesystem>
#include <limits>
#include <set>

#include <ControlCharacters.h>
#include <TextFile.h>
#include <TomlShape.h>

#include <toml++/toml.h>

namespace sim {

namespace {

constexpr const char* ethernetType = "SBus-Ethernet";
constexpr const char* serialType = "SBus-Serial";

class Loader {
public:
    Loader(std::string fileName, std::vector<std::string>& errorList)
        : file(std::move(fileName)), errors(errorList) {}

    Site load(const toml::table& root);

private:
    void readChannel(const toml::table& channel, Site& site);
    void readEnd(const toml::table& channel, const char* key, EndPoint& end);
    void readRtus(const toml::table& channel, LineSite& line);
    void readPoints(const toml::table& rtu, std::vector<SitePoint>& points) const;
    Abilities readAbilities(const toml::table& rtu);
    std::optional<Framing> readTransmitType(const toml::table& rtu);

    // Whether a text holds what a terminal would obey instead of showing it.
    bool refuseControls(const toml::table& table, const char* key, const std::string& value);

    // The value of a key that must be there. A mistake is noted and gives no value.
    template <typename Value>
    std::optional<Value> require(const toml::table& table, const char* key, const char* rule);
    template <typename Function>
    void forEachTable(const toml::table& table, const char* key, const char* rule, Function function);

    std::string place(const toml::node& node, const char* key) const {
        return file + ":" + std::to_string(node.source().begin.line) + ": " + key + ": ";
    }
    void note(const toml::node& node, const char* key, const std::string& text) {
        errors.push_back(place(node, key) + text);
    }

    const std::string file;
    std::vector<std::string>& errors;
    std::set<std::int64_t> channelIds;
};

bool Loader::refuseControls(const toml::table& table, const char* key, const std::string& value) {
    const std::size_t control = text::findControl(value);
    if (control == std::string::npos)
        return false;
    note(*table.get(key), key,
         "holds control character " + text::controlName(value, control) + "; take it out");
    return true;
}

template <typename Value>
std::optional<Value> Loader::require(const toml::table& table, const char* key, const char* rule) {
    const toml::node* node = table.get(key);
    std::optional<Value> value = node ? node->value_exact<Value>() : std::nullopt;
    if (!value)
        note(node ? *node : table, key, node ? rule : std::string("is missing; ") + rule);
    return value;
}

template <typename Function>
void Loader::forEachTable(const toml::table& table, const char* key, const char* rule, Function function) {
    const toml::node* node = table.get(key);
    const toml::array* array = node ? node->as_array() : nullptr;
    if (!array || array->empty()) {
        note(node ? *node : table, key, rule);
        return;
    }
    for (const toml::node& element : *array) {
        if (const toml::table* entry = element.as_table())
            function(*entry);
        else
            note(element, key, rule);
    }
}

Site Loader::load(const toml::table& root) {
    Site site;
    forEachTable(root, "channel", "there must be at least one [[channel]] table",
                 [&](const toml::table& channel) { readChannel(channel, site); });
    return site;
}

void Loader::readChannel(const toml::table& channel, Site& site) {
    LineSite line;
    const char* idRule = "must be a whole number from 0 to 2147483647";
    const auto id = require<std::int64_t>(channel, "id", idRule);
    if (id && (*id < 0 || *id > std::numeric_limits<int>::max()))
        note(*channel.get("id"), "id", idRule);
    else if (id && !channelIds.insert(*id).second)
        note(*channel.get("id"), "id", "channel " + std::to_string(*id) + " is there already");
    line.id = static_cast<int>(id.value_or(0));
    line.name = channel["name"].value_or(std::string());
    refuseControls(channel, "name", line.name);

    const char* typeRule = "must be \"SBus-Ethernet\" or \"SBus-Serial\"";
    const auto type = require<std::string>(channel, "type", typeRule);
    if (type && *type != ethernetType && *type != serialType)
        note(*channel.get("type"), "type", typeRule);
    readEnd(channel, "primary", line.primary);
    if (channel.contains("secondary"))
        readEnd(channel, "secondary", line.secondary.emplace());

    line.framing = type == serialType ? Framing::DataMode : Framing::Ethernet;
    readRtus(channel, line);
    site.lines.push_back(std::move(line));
}

void Loader::readEnd(const toml::table& channel, const char* key, EndPoint& end) {
    const auto text = require<std::string>(channel, key, "must be a text, as in \"udp://192.168.10.5:5050\"");
    if (!text)
        return;
    if (refuseControls(channel, key, *text))
        return;
    const toml::node& node = *channel.get(key);
    end.place = place(node, key);
    std::string error;
    if (!parseEndPoint(*text, end, error)) {
        note(node, key, error);
        return;
    }
    const auto type = channel["type"].value<std::string>();
    const bool serial = end.kind == EndPoint::Kind::Serial;
    if ((type == ethernetType && serial) || (type == serialType && !serial))
        note(node, key,
             serial ? "an SBus-Ethernet channel needs udp://" : "an SBus-Serial channel needs serial:");
}

void Loader::readRtus(const toml::table& channel, LineSite& line) {
    if (!channel.contains("rtu"))
        return; // a line whose controllers are still to come
    std::optional<std::int64_t> lastId;
    forEachTable(channel, "rtu", "must be [[channel.rtu]] tables", [&](const toml::table& rtu) {
        const auto id = require<std::int64_t>(rtu, "id", "must be a whole number");
        const char* stationRule = "must be a whole number from 0 to 255";
        const auto station = require<std::int64_t>(rtu, "station", stationRule);
        if (station && (*station < 0 || *station > broadcastStation))
            note(*rtu.get("station"), "station", stationRule);
        else if (station && *station != broadcastStation) {
            line.stations.push_back(static_cast<int>(*station));
            addAbilities(line.abilities[line.stations.back()], readAbilities(rtu));
        }

        if (station)
            readPoints(rtu, line.points[static_cast<int>(*station)]);

        // As on the host's side, of the RTUs that name a type the one with the highest id decides for the
        // whole line.
        const auto framing = readTransmitType(rtu);
        if (framing && line.framing != Framing::Ethernet && (!lastId || id >= lastId)) {
            line.framing = *framing;
            lastId = id;
        }
    });
}

// The host tells what is wrong with points; here they only say what there is to move.
void Loader::readPoints(const toml::table& rtu, std::vector<SitePoint>& points) const {
    if (const auto table = rtu["points"].value<std::string>()) {
        const auto folder = std::filesystem::u8path(file).parent_path();
        const std::vector<SitePoint> read =
            readPointTable((folder / std::filesystem::u8path(*table)).u8string());
        points.insert(points.end(), read.begin(), read.end());
    }
    const toml::array* const tables = rtu["point"].as_array();
    if (tables == nullptr)
        return;
    for (const toml::node& element : *tables)
        if (const toml::table* const point = element.as_table())
            if (const auto parsed = parsePoint((*point)["address"].value_or(std::string()),
                                               (*point)["format"].value_or(std::string())))
                points.push_back(*parsed);
}

// The controller takes no more than its site file says of it.
Abilities Loader::readAbilities(const toml::table& rtu) {
    Abilities abilities;
    const auto read = [&](const char* key, std::optional<unsigned>& limit) {
        if (!rtu.contains(key))
            return;
        const char* rule = "must be a whole number above 0";
        const auto most = require<std::int64_t>(rtu, key, rule);
        if (most && *most < 1)
            note(*rtu.get(key), key, rule);
        else if (most)
            limit = static_cast<unsigned>(*most);
    };
    read("max_read_words", abilities.readWords);
    read("max_read_bits", abilities.readBits);
    read("max_write_words", abilities.writeWords);
    if (rtu["single_writes"].value_or(false))
        abilities.writeWords = 1;
    return abilities;
}

// Nothing when the RTU says nothing of it.
std::optional<Framing> Loader::readTransmitType(const toml::table& rtu) {
    if (!rtu.contains("transmit_type"))
        return std::nullopt;
    const char* rule = "must be \"data\" or \"break\"";
    const auto type = require<std::string>(rtu, "transmit_type", rule);
    if (type == "data")
        return Framing::DataMode;
    if (type == "break")
        return Framing::BreakMode;
    if (type)
        note(*rtu.get("transmit_type"), "transmit_type", rule);
    return std::nullopt;
}

} // namespace

Site loadSite(const std::string& file, std::vector<std::string>& errors) {
    constexpr std::uintmax_t largestFile = 67'108'864; // 64 MB, as the host takes
    const text::FileText read = text::readTextFile(file, largestFile);
    if (!read.contents) {
        errors.push_back(file + ": " + read.fault);
        return {};
    }
    if (const std::optional<text::ShapeFault> fault = text::findTomlShapeFault(*read.contents)) {
        errors.push_back(file + ":" + std::to_string(fault->line) + ": " + fault->what + "; " +
                         fault->remedy);
        return {};
    }
    try {
        const toml::table root = toml::parse(*read.contents, file);
        return Loader(file, errors).load(root);
    } catch (const toml::parse_error& error) {
        errors.push_back(file + ":" + std::to_string(error.source().begin.line) + ": " +
                         std::string(error.description()));
        return {};
    }
}

} // namespace sim
