#pragma once

#include "Abilities.h"
#include "EndPoint.h"
#include "SitePoint.h"
#include "Telegram.h"

#include <map>
#include <optional>
#include <vector>

namespace sim {

// One line with its controllers. On both ends the same controllers answer.
struct LineSite {
    int id = 0; // the channel's
    std::string name;
    Framing framing = Framing::Ethernet;
    EndPoint primary;
    std::optional<EndPoint> secondary;
    std::vector<int> stations;                    // 0 to 254; a station named twice is one controller
    std::map<int, Abilities> abilities;           // by station; of those that can do less
    std::map<int, std::vector<SitePoint>> points; // by station
};

// What there is to play. Made in code, or read from a file with loadSite().
struct Site {
    std::vector<LineSite> lines;
};

// On a port of 127.0.0.1; 0: any free one.
inline LineSite udpLine(int id, std::vector<int> stations, std::uint16_t port = 0) {
    LineSite line;
    line.id = id;
    line.stations = std::move(stations);
    line.primary.port = port;
    return line;
}

// On a pseudo-terminal that is linked at `path`.
inline LineSite serialLine(int id, std::vector<int> stations, Framing framing, const std::string& path,
                           const SerialSettings& settings = {}) {
    LineSite line;
    line.id = id;
    line.framing = framing;
    line.stations = std::move(stations);
    line.primary.kind = EndPoint::Kind::Serial;
    line.primary.path = path;
    line.primary.serial = settings;
    return line;
}

} // namespace sim
