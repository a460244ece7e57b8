#pragma once

#include "Request.h"

#include <optional>
#include <set>
#include <string>
#include <utility>

namespace sim {

// What a controller can do less than others: how many elements it takes in one telegram, and which elements
// it does not have although its memory has room for them.
struct Abilities {
    std::optional<unsigned> readWords;
    std::optional<unsigned> readBits;
    std::optional<unsigned> writeWords;
    std::set<std::pair<Media, unsigned>> absent;

    bool allow(const Request& request) const;
};

// One ability of one station, from the command line.
struct AbilitySetting {
    std::optional<int> lineId; // none: every line that has the station
    int station = 0;
    Abilities abilities; // holds the one that was named
};

// "5/read_words=20", "2:5/read_bits=64", "5/write_words=1". Otherwise false and `error` says why.
bool parseLimit(const std::string& text, AbilitySetting& setting, std::string& error);
// "5/R17". Likewise.
bool parseAbsent(const std::string& text, AbilitySetting& setting, std::string& error);

// Adds what `more` says to `abilities`.
void addAbilities(Abilities& abilities, const Abilities& more);

} // namespace sim
