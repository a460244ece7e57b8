#pragma once

#include "Site.h"

#include <string>

namespace sim {

// Where a site is played on one computer: every end leads to an address of the loopback or, a serial device,
// to a link in `folder`. The host's side has the same rule, so that both programs meet with the same site
// file.
//
// An IPv4 address keeps its last three numbers (10.0.0.5 becomes 127.0.0.5); a name, or an address of another
// kind, becomes an address made from its letters. "localhost" and addresses of the loopback stay. A device
// becomes "FOLDER/loopback-NAME", where NAME is its path with "-" for each "/".
EndPoint onLoopback(EndPoint end, const std::string& folder);
Site onLoopback(Site site, const std::string& folder);

} // namespace sim
