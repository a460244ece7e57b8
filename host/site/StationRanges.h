#pragma once

#include <string>
#include <vector>

namespace host {

constexpr unsigned highestAnsweringStation = 254; // 255 is the broadcast, which nobody answers

struct ParsedStations {
    std::vector<unsigned> stations; // in ascending order, each once; empty when something is wrong
    std::string what;               // what is wrong; empty when nothing is
    std::string remedy;
};
// "0..253", "5", "1,4..9"
ParsedStations parseStations(const std::string& text);

} // namespace host
