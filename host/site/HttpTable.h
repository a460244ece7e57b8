#pragma once

#include "HttpSettings.h"
#include "TomlTable.h"

namespace host {

// Reads the table [http] of a site file; nothing without it. Warns of an address that others than this
// computer reach when nothing keeps them from reading, or the password crosses the network in clear.
std::optional<HttpSettings> readHttpTable(TomlTable& root, const std::string& file, Findings& findings);

} // namespace host
