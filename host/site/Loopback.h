#pragma once

#include "Site.h"

#include <string>

namespace host {

// Where a site is run on one computer, without its controllers: every end leads to an address of the loopback
// or, a serial device, to a link in `folder` (text/LoopbackNames.h has the rule).
LinkEnd onLoopback(const LinkEnd& end, const std::string& folder);
void moveToLoopback(Site& site, const std::string& folder);
// The folder that the links of a site file stand in: its own.
std::string loopbackFolderOf(const std::string& siteFile);

} // namespace host
