#pragma once

#include "site/CsvReader.h"

#include <array>
#include <optional>
#include <string>

namespace host {

// What is taken from a symbol list.
enum class SymbolField : std::size_t { Symbol, Type, Address, Comment };
constexpr std::size_t symbolFieldCount = 4;

// Where it stands, by SymbolField; counted from 0. A list without types has addresses such as "R 100".
struct SymbolColumns {
    std::array<std::optional<std::size_t>, symbolFieldCount> places;

    bool areEnough() const;
};

// Where somebody says that it stands: by a column's number, or by its head.
struct ChosenColumns {
    SymbolColumns numbers;
    std::array<std::string, symbolFieldCount> heads;

    // No row of heads is needed then.
    bool areNumbersEnough() const { return numbers.areEnough(); }
};

struct ParsedColumns {
    ChosenColumns columns;
    std::string fault; // why there are none
};
// "symbol=1,type=2,address=3" or "symbol=Bezeichner,address=Operand".
ParsedColumns parseColumns(const std::string& text);

// The columns that the row's heads name, in English, German, French or Italian, together with those chosen.
SymbolColumns columnsOf(const CsvRow& heads, const ChosenColumns& chosen);
// How many cells of the row are heads.
std::size_t countHeads(const CsvRow& row, const ChosenColumns& chosen);

} // namespace host
