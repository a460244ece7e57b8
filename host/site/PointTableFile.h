#pragma once

#include "Site.h"

namespace host {

// The names of columns that a table may have and nobody reads; in any case.
using IgnoredColumns = std::vector<std::string>;

// The points of a table whose first row names the columns; `bytes` are its file's. Whatever is wrong is told
// with its line and column, ids taken twice included; the rows without a fault are returned all the same, so
// that the checks that come later see them. A table of which nothing can be understood is one finding.
std::vector<Point> readPointTable(std::string bytes, const std::string& file, const IgnoredColumns& ignored,
                                  Findings& findings);

} // namespace host
