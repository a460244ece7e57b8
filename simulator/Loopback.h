#pragma once

#include "Site.h"

#include <string>

namespace sim {

// Where a site is played on one computer: every end leads to an address of the loopback or, a serial device,
// to a link in `folder` (text/LoopbackNames.h has the rule).
EndPoint onLoopback(EndPoint end, const std::string& folder);
Site onLoopback(Site site, const std::string& folder);

} // namespace sim
