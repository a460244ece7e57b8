#pragma once

#include "ScanReply.h"

#include <string>

namespace host {

// The text of a site file to start from, `name` being its own: an RTU for each station that is there, on the
// line and in the way in which most of them are. The other ways, if any, are named in a comment. At least one
// station has to be there.
std::string siteTextOf(const std::vector<LineScan>& scans, const std::string& name);

std::size_t countPresent(const LineScan& scan);

} // namespace host
