#pragma once

#include "CsvReader.h"

#include <functional>

namespace host {

// How many of a row's cells are heads of columns that somebody looks for.
using HeadCount = std::function<std::size_t(const CsvRow& row)>;

// What separates the cells of a table: the one of comma, semicolon and tab with which one of the first rows
// holds the most heads; where none of them does, the one that makes the most cells.
char separatorOf(const std::string& text, const HeadCount& headsIn);

// Whether the row is "sep=;", which spreadsheets write for each other.
bool namesSeparator(const CsvRow& row);

} // namespace host
