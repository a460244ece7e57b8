#include "ModbusTable.h"

#include <map>

namespace host {

namespace {

constexpr long long largestBlock = 65'536; // addresses that a table has

// A key that takes one of a few words; `value` keeps its own without the key.
template <typename Value>
void readWord(TomlTable& table, const std::string& key, const std::map<std::string, Value>& words,
              Value& value, Findings& findings) {
    std::string remedy;
    for (const auto& [word, meaning] : words)
        remedy += (remedy.empty() ? "write \"" : " or \"") + word + '"';
    const std::optional<Field> field = table.text(key, remedy);
    if (!field)
        return;
    const auto found = words.find(field->text);
    if (found == words.end())
        findings.error(field->place, key + " \"" + field->text + "\" is not known", remedy);
    else
        value = found->second;
}

void readAllowed(TomlTable& table, ModbusSettings& settings, Findings& findings) {
    const std::string remedy = "list networks: allow = [\"10.0.0.0/8\", \"192.168.10.5\"]";
    for (const std::string& text : table.texts("allow", remedy)) {
        if (const std::optional<NetworkRange> range = NetworkRange::parse(text))
            settings.allowed.push_back(*range);
        else
            findings.error(table.placeOf("allow"), "allow \"" + text + "\" is no network", remedy);
    }
}

void warnOfOpenAddress(const ModbusSettings& settings, Findings& findings) {
    if (settings.listen.isLoopback() || !settings.allowed.empty())
        return;
    findings.warning(settings.listen.place,
                     "whoever reaches " + toText(settings.listen) + " can read every value of the map" +
                         (settings.takesWrites ? " and command its points" : "") + ": Modbus has no password",
                     "listen on 127.0.0.1, or name in allow who may connect");
}

} // namespace

std::optional<ModbusSettings> readModbusTable(TomlTable& root, const std::string& file, Findings& findings) {
    using Settings = ModbusSettings;
    const toml::table* const source = root.subTable("modbus");
    if (source == nullptr)
        return std::nullopt;
    TomlTable table(*source, file, findings);
    Settings settings;
    const std::optional<ListenAddress> listen = readListenAddress(table, "127.0.0.1:1502", findings);
    readAllowed(table, settings, findings);
    settings.takesWrites = table.flag("writes").value_or(false);
    readWord<Settings::Units>(table, "units", {{"one", Settings::Units::One}, {"rtu", Settings::Units::Rtu}},
                              settings.units, findings);
    readWord<Settings::Points>(table, "points",
                               {{"all", Settings::Points::All}, {"listed", Settings::Points::Listed}},
                               settings.points, findings);
    settings.block = static_cast<unsigned>(table.integer("block", 1, largestBlock).value_or(settings.block));
    readWord<Settings::Quality>(
        table, "quality", {{"exception", Settings::Quality::Exception}, {"bits", Settings::Quality::Bits}},
        settings.quality, findings);
    readWord<Settings::WordOrder>(
        table, "word_order",
        {{"high-first", Settings::WordOrder::HighFirst}, {"low-first", Settings::WordOrder::LowFirst}},
        settings.wordOrder, findings);
    table.rejectUnknownKeys();
    if (!listen)
        return std::nullopt;
    settings.listen = *listen;
    warnOfOpenAddress(settings, findings);
    return settings;
}

} // namespace host
