#pragma once

#include "site/Site.h"

namespace host {

// Tells when the system does not know the group that the site opens its control socket to.
void checkControlGroup(const Site& site, Findings& findings);

} // namespace host
