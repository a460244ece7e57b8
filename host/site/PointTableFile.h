#pragma once

#include "Site.h"

namespace host {

// The points of a table of comma-separated values whose first row names the columns. Whatever is wrong is
// told with its line and column, ids taken twice included; the rows without a fault are returned all the
// same, so that the checks that come later see them.
std::vector<Point> readPointTable(const std::string& text, const std::string& file, Findings& findings);

} // namespace host
