#pragma once

#include "SymbolColumns.h"
#include "site/ElementAddress.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace host {

// A symbol, or one element of a symbol's range, as a point of a point table.
struct ImportedPoint {
    std::string name;
    ElementAddress address;
    bool isFloat = false;
    std::string comment;
};

struct LeftOutSymbol {
    Place place;
    std::string name;
    std::string reason;
};

// Makes points of symbol lists: tables whose heads, or whoever calls, say where symbol, type, address and
// comment stand. Names keep their groups ("Plant.Pump1.Run"); a range NAME of ten elements is NAME.0 to
// NAME.9.
class SymbolImport {
public:
    explicit SymbolImport(ChosenColumns chosenColumns);

    // Reads a list's bytes. What is wrong with the list as a whole is told.
    void read(std::string bytes, const std::string& file, Findings& findings);

    const std::vector<ImportedPoint>& points() const { return taken; }
    const std::vector<LeftOutSymbol>& leftOut() const { return left; }

private:
    void readRow(const CsvRow& row, const SymbolColumns& columns, const std::string& file);
    std::string take(const std::string& name, const std::string& type, const std::string& address,
                     const std::string& comment);

    const ChosenColumns chosen;
    std::vector<ImportedPoint> taken;
    std::vector<LeftOutSymbol> left;
    std::unordered_set<std::string> names;
};

// The point table, with ids from 1 on and the comments in a column that nobody reads.
std::string pointTableText(const std::vector<ImportedPoint>& points);
// A line for each of the first symbols that were left out for one reason; the others are counted.
std::vector<std::string> leftOutLines(const std::vector<LeftOutSymbol>& symbols);

} // namespace host
