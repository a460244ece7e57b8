#pragma once

#include "Site.h"
#include "TomlTable.h"

namespace host {

// Reads the table [control] of a site file; without it everything is as it is by default.
ControlSettings readControlTable(TomlTable& root, const std::string& file, Findings& findings);

} // namespace host
