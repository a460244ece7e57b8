#pragma once

#include "site/SiteFile.h"

namespace host {

// Compares each read telegram of a site without errors with its time-out: an error for one whose answer the
// driver can never take in, a warning for one that needs more than half of it.
void checkLines(const Site& site, Findings& findings);

// loadSite(), and the lines checked.
LoadedSite loadCheckedSite(const std::string& path);

} // namespace host
