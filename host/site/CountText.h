#pragma once

#include <cstdint>
#include <string>

namespace host {

// "1 point", "2 points"
inline std::string countText(std::uint64_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

// "1 point was", "2 points were"
inline std::string countWereText(std::uint64_t count, const std::string& noun) {
    return countText(count, noun) + (count == 1 ? " was" : " were");
}

} // namespace host
