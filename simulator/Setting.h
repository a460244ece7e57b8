#pragma once

#include "Media.h"

#include <optional>
#include <string>
#include <string_view>

namespace sim {

// One element fixed from the command line.
struct Setting {
    std::optional<int> lineId; // none: every line that has the station
    int station = 0;
    Media media = Media::Registers;
    unsigned address = 0;
    std::uint32_t value = 0; // as the element holds it
};

// "5/R200=7": station 5. "2:5/R200=7": on line 2 only. "5/R300=7.5": with a point, a floating-point word.
// Otherwise false and `error` says why.
bool parseSetting(const std::string& text, Setting& setting, std::string& error);

// The parts of such a text: "5" or "2:5", and "R200".
bool parseStation(std::string_view text, Setting& setting);
bool parseElement(std::string_view text, Setting& setting);

} // namespace sim
