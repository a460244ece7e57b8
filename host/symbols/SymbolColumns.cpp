#include "SymbolColumns.h"

#include "SymbolWords.h"
#include "site/Number.h"

#include <algorithm>
#include <initializer_list>

namespace host {

namespace {

constexpr std::array<const char*, symbolFieldCount> fieldNames = {"symbol", "type", "address", "comment"};

// As folded() leaves them.
const std::array<std::initializer_list<const char*>, symbolFieldCount> knownHeads = {{
    {"symbol", "symbols", "symbol name", "symbolname", "name", "tag", "symbole", "nom", "bezeichner",
     "simbolo", "nome"},
    {"type", "typ", "tipo", "kind", "art", "media", "medium", "genre"},
    {"address", "addr", "adresse", "adr", "indirizzo", "operand", "address/value", "adresse/wert",
     "adresse/valeur", "indirizzo/valore"},
    {"comment", "comments", "description", "kommentar", "bemerkung", "beschreibung", "commentaire",
     "remarque", "commento", "descrizione"},
}};

bool isHeadOf(std::size_t field, const std::string& cell, const ChosenColumns& chosen) {
    const std::string head = folded(cell);
    if (!chosen.heads[field].empty())
        return head == folded(chosen.heads[field]);
    return std::any_of(knownHeads[field].begin(), knownHeads[field].end(),
                       [&head](const char* known) { return head == known; });
}

ParsedColumns refuse(const std::string& what) {
    return {{}, what + "; write such as symbol=1,type=2,address=3,comment=4, with columns' numbers or heads"};
}

// One "field=column". Empty, or what is wrong with it.
std::string take(const std::string& part, ChosenColumns& columns) {
    constexpr unsigned mostColumns = 1'000;
    const std::size_t equals = part.find('=');
    const auto name = std::find(fieldNames.begin(), fieldNames.end(), folded(part.substr(0, equals)));
    if (equals == std::string::npos || name == fieldNames.end())
        return "\"" + part + "\" names none of symbol, type, address and comment";
    const auto field = static_cast<std::size_t>(name - fieldNames.begin());
    const std::string column = part.substr(equals + 1);
    if (const std::optional<unsigned> number = parseNumber(column, 1, mostColumns))
        columns.numbers.places[field] = *number - 1;
    else if (column.empty())
        return "\"" + part + "\" names no column";
    else
        columns.heads[field] = column;
    return {};
}

} // namespace

bool SymbolColumns::areEnough() const {
    return places[static_cast<std::size_t>(SymbolField::Symbol)] &&
           places[static_cast<std::size_t>(SymbolField::Address)];
}

ParsedColumns parseColumns(const std::string& text) {
    ParsedColumns parsed;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string fault = take(text.substr(start, end - start), parsed.columns);
        if (!fault.empty())
            return refuse(fault);
        start = end + 1;
    }
    return parsed;
}

SymbolColumns columnsOf(const CsvRow& heads, const ChosenColumns& chosen) {
    SymbolColumns columns = chosen.numbers;
    for (std::size_t field = 0; field < symbolFieldCount; ++field)
        for (std::size_t i = 0; i < heads.cells.size() && !columns.places[field]; ++i)
            if (isHeadOf(field, heads.cells[i].text, chosen))
                columns.places[field] = i;
    return columns;
}

std::size_t countHeads(const CsvRow& row, const ChosenColumns& chosen) {
    std::size_t count = 0;
    for (const Cell& cell : row.cells)
        for (std::size_t field = 0; field < symbolFieldCount; ++field)
            count += isHeadOf(field, cell.text, chosen) ? 1 : 0;
    return count;
}

} // namespace host
