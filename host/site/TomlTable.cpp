#include "TomlTable.h"

#include "Duration.h"
#include "NumberText.h"

#include <ControlCharacters.h>

namespace host {

namespace {

const std::string durationRemedy =
    "write a number and its unit in quotes: \"500ms\", \"1s\", \"2m\", \"24h\"";

Place placeIn(const std::string& file, const toml::source_region& region) {
    return {file, region.begin.line, region.begin.column};
}

} // namespace

TomlTable::TomlTable(const toml::table& tomlTable, const std::string& siteFile, Findings& siteFindings)
    : table(tomlTable), file(siteFile), findings(siteFindings) {}

Place TomlTable::placeOf(const toml::node& node) const {
    return placeIn(file, node.source());
}

Place TomlTable::placeOf(const std::string& key) const {
    const toml::node* const node = table.get(key);
    return node == nullptr ? place() : placeOf(*node);
}

const toml::node* TomlTable::find(const std::string& key) {
    knownKeys.insert(key);
    return table.get(key);
}

void TomlTable::refuse(const toml::node& node, const std::string& what, const std::string& remedy) {
    findings.error(placeOf(node), what, remedy);
}

std::optional<Field> TomlTable::text(const std::string& key, const std::string& remedy) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const toml::value<std::string>* const value = node->as_string();
    if (value == nullptr || value->get().empty()) {
        refuse(*node, key + " is " + (value == nullptr ? "no text" : "empty"), remedy);
        return std::nullopt;
    }
    if (!isShowable(key, *value))
        return std::nullopt;
    return Field{value->get(), placeOf(*node)};
}

bool TomlTable::isShowable(const std::string& key, const toml::value<std::string>& value) {
    const std::size_t control = text::findControl(value.get());
    if (control == std::string::npos)
        return true;
    refuse(value, key + " holds control character " + text::controlName(value.get(), control),
           "take it out; texts are one line of what can be shown");
    return false;
}

std::vector<std::string> TomlTable::texts(const std::string& key, const std::string& remedy) {
    std::vector<std::string> result;
    const toml::node* const node = find(key);
    if (node == nullptr)
        return result;
    const toml::array* const array = node->as_array();
    if (array == nullptr) {
        refuse(*node, key + " is no list", remedy);
        return result;
    }
    for (const toml::node& element : *array) {
        const toml::value<std::string>* const value = element.as_string();
        if (value == nullptr)
            refuse(element, "an element of " + key + " is no text", remedy);
        else if (isShowable(key, *value))
            result.push_back(value->get());
    }
    return result;
}

std::optional<long long> TomlTable::integer(const std::string& key, long long lowest, long long highest) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const toml::value<std::int64_t>* const value = node->as_integer();
    if (value != nullptr && value->get() >= lowest && value->get() <= highest)
        return value->get();
    refuse(*node,
           value == nullptr ? key + " is no whole number"
                            : key + " " + std::to_string(value->get()) + " is out of range",
           "give a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    return std::nullopt;
}

std::optional<bool> TomlTable::flag(const std::string& key) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    if (const toml::value<bool>* const value = node->as_boolean())
        return value->get();
    refuse(*node, key + " is neither true nor false", "write true or false, without quotes");
    return std::nullopt;
}

std::optional<std::chrono::milliseconds> TomlTable::duration(const std::string& key) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const toml::value<std::string>* const value = node->as_string();
    if (value == nullptr) {
        refuse(*node, key + " is a duration without a unit", durationRemedy);
        return std::nullopt;
    }
    const std::optional<std::chrono::milliseconds> duration = parseDuration(value->get());
    if (!duration) {
        refuse(*node, key + " \"" + value->get() + "\" is no duration", durationRemedy);
        return std::nullopt;
    }
    if (duration->count() == 0) {
        refuse(*node, key + " is 0", "give a time above 0, such as \"1s\"");
        return std::nullopt;
    }
    return duration;
}

std::optional<Field> TomlTable::textOrNumber(const std::string& key) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return std::nullopt;
    if (const toml::value<std::string>* const text = node->as_string())
        return isShowable(key, *text) ? std::optional(Field{text->get(), placeOf(*node)}) : std::nullopt;
    if (const toml::value<std::int64_t>* const number = node->as_integer())
        return Field{std::to_string(number->get()), placeOf(*node)};
    if (const toml::value<double>* const number = node->as_floating_point())
        return Field{numberText(number->get()), placeOf(*node)};
    refuse(*node, key + " is neither a text nor a number", "write it as in a point table");
    return std::nullopt;
}

const toml::table* TomlTable::subTable(const std::string& key) {
    const toml::node* const node = find(key);
    if (node == nullptr)
        return nullptr;
    if (!node->is_table())
        refuse(*node, key + " is no table", "write " + key + " = { ... }");
    return node->as_table();
}

std::vector<const toml::table*> TomlTable::tables(const std::string& key) {
    std::vector<const toml::table*> result;
    const toml::node* const node = find(key);
    if (node == nullptr)
        return result;
    const toml::array* const array = node->as_array();
    if (array == nullptr) {
        refuse(*node, key + " is no list of tables", "put its header into double brackets: [[...]]");
        return result;
    }
    for (const toml::node& element : *array) {
        if (const toml::table* const one = element.as_table())
            result.push_back(one);
        else
            refuse(element, "an element of " + key + " is no table",
                   "put its header into double brackets: [[...]]");
    }
    return result;
}

void TomlTable::need(const std::string& key, const std::string& remedy) {
    if (!has(key))
        findings.error(place(), key + " is missing", remedy);
}

void TomlTable::rejectUnknownKeys() {
    std::string known = "the keys here are ";
    for (const std::string& key : knownKeys)
        known += key + (key == *knownKeys.rbegin() ? "" : ", ");
    for (const auto& [key, value] : table)
        if (knownKeys.count(std::string(key.str())) == 0)
            findings.error(placeIn(file, key.source()), "unknown key \"" + std::string(key.str()) + "\"",
                           known);
}

} // namespace host
