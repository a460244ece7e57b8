#pragma once

#include "HistorySettings.h"
#include "TomlTable.h"

namespace host {

// Reads the table [history] of a site file. A path in it that is not a full one begins at the folder of the
// site file, as those of point tables do. Nothing when there is no such table.
std::optional<HistorySettings> readHistoryTable(TomlTable& root, const std::string& file, Findings& findings);

} // namespace host
