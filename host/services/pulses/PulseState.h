#pragma once

#include "site/Site.h"

#include <optional>
#include <string>
#include <vector>

// The pulses that are running, as they stand in the host's state file. Pure.
namespace host {

// An output or flag that a pulse has switched on, and all that tells it from another one of the plant.
struct RememberedPulse {
    int channelId = 0;
    std::string end; // of the line, as the site file names it
    int rtuId = 0;
    std::string rtuName;
    unsigned station = 0;
    unsigned pointId = 0;
    std::string pointName;
    std::string element; // that was switched on, "O40"
};

RememberedPulse rememberedPulse(const Channel& channel, const Rtu& rtu, const Point& point);
// "RTU 7 "pump-house" (station 5, udp://10.0.0.5:5050), point 1 "RUN" (O32)"
std::string nameOf(const RememberedPulse& pulse);

// What a site has under the ids of a remembered pulse. All null when that is another element, on another line
// or of another station.
struct PulsePlace {
    const Channel* channel = nullptr;
    const Rtu* rtu = nullptr;
    const Point* point = nullptr;
};
PulsePlace findPlace(const Site& site, const RememberedPulse& pulse);

// `sitePath` is the site file's, which the text names.
std::string pulsesAsText(const std::string& sitePath, const std::vector<RememberedPulse>& pulses);
// Nothing when the text is damaged, or belongs to another site file.
std::optional<std::vector<RememberedPulse>> parsePulses(const std::string& sitePath, const std::string& text);

} // namespace host
