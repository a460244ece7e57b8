#pragma once

#include "Site.h"

namespace sim {

// Reads the host's site file, as far as it concerns the controllers: channels with their type and ends, RTUs
// with their station and transmit type. Points and keys that are not known are passed over.
// Every mistake adds "file:line: key: what would be right" to `errors`; with any, the site is not usable.
Site loadSite(const std::string& file, std::vector<std::string>& errors);

} // namespace sim
