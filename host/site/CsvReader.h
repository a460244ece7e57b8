#pragma once

#include "PointFields.h"

namespace host {

// A row of a table of comma-separated values.
struct CsvRow {
    std::vector<Field> cells;
    Place start;
    Place end; // just behind the last cell
};

// Cuts `text` into rows. Cells may stand in double quotes, with a quote inside written twice; blanks around
// a cell do not count; empty lines and a byte-order mark are passed over.
std::vector<CsvRow> readCsv(const std::string& text, const std::string& file, Findings& findings);

} // namespace host
