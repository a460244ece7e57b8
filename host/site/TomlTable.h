#pragma once

#include "Finding.h"

#include <toml++/toml.h>

#include <chrono>
#include <optional>
#include <set>

namespace host {

// What a key says, as text, and where.
struct Field {
    std::string text;
    Place place;
};

// Reads the keys of one table of a site file and tells what is wrong with them. Each key that is asked for is
// known from then on; the others are told by rejectUnknownKeys(). Lives no longer than the table and the
// findings that it was made with.
class TomlTable {
public:
    TomlTable(const toml::table& tomlTable, const std::string& siteFile, Findings& siteFindings);

    Place place() const { return placeOf(table); }
    // The place of the value of `key`, or of the table when there is none.
    Place placeOf(const std::string& key) const;

    // Nothing for a key that is left out, and, with the finding told, for one of a wrong type or range.
    std::optional<Field> text(const std::string& key, const std::string& remedy);
    std::optional<long long> integer(const std::string& key, long long lowest, long long highest);
    std::optional<bool> flag(const std::string& key);
    // Above zero.
    std::optional<std::chrono::milliseconds> duration(const std::string& key);
    // A number or a text, as text.
    std::optional<Field> textOrNumber(const std::string& key);
    // A list of texts.
    std::vector<std::string> texts(const std::string& key, const std::string& remedy);
    // Null for a key that is left out.
    const toml::table* subTable(const std::string& key);
    std::vector<const toml::table*> tables(const std::string& key);

    bool has(const std::string& key) const { return table.contains(key); }
    // Tells when `key` is left out.
    void need(const std::string& key, const std::string& remedy);
    void rejectUnknownKeys();

private:
    Place placeOf(const toml::node& node) const;
    const toml::node* find(const std::string& key);
    void refuse(const toml::node& node, const std::string& what, const std::string& remedy);
    // Whether the text can be shown. One that cannot is told.
    bool isShowable(const std::string& key, const toml::value<std::string>& value);

    const toml::table& table;
    const std::string& file;
    Findings& findings;
    std::set<std::string> knownKeys;
};

} // namespace host
