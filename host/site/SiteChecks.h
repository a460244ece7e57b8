#pragma once

#include "Site.h"

namespace host {

// Where an RTU gives the line-wide settings itself; nothing where it does not.
struct LineSetting {
    std::optional<Place> transmitType;
    std::optional<Place> breakDelay;
};
using LineSettings = std::vector<LineSetting>; // one for each RTU of a channel, in its order

// The driver keeps one transmit type and one break delay for a serial line, those of the RTU with the highest
// id. Tells RTUs that want something else; an RTU that does not say takes what the others say.
void unifyLineSettings(Channel& channel, const LineSettings& settings, Findings& findings);

// What shows only when the parts are seen together: ids and names taken twice, a device used by two lines, a
// site with nothing to do.
void checkSite(const Site& site, Findings& findings);

} // namespace host
