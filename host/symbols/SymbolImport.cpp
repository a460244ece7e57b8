#include "SymbolImport.h"

#include "SymbolElements.h"
#include "site/Separator.h"

#include <ControlCharacters.h>
#include <TextEncoding.h>

#include <map>

namespace host {

namespace {

constexpr std::size_t mostPoints = 2'000'000; // ranges are short to write
constexpr std::size_t shownOfAReason = 5;
constexpr std::size_t mostReasons = 10; // a list whose columns were mistaken has one for each row

const std::string& cellOf(const CsvRow& row, const SymbolColumns& columns, SymbolField field) {
    static const std::string nothing;
    const std::optional<std::size_t> place = columns.places[static_cast<std::size_t>(field)];
    return place && *place < row.cells.size() ? row.cells[*place].text : nothing;
}

std::string quoted(const std::string& cell) {
    std::string text = "\"";
    for (const char letter : cell)
        text.append(letter == '"' ? 2 : 1, letter);
    return text + '"';
}

std::string cellText(const std::string& cell) {
    return cell.find_first_of(",\"#") == std::string::npos ? cell : quoted(cell);
}

// On one line, and without what no point table may hold.
std::string plainComment(const std::string& comment) {
    std::string plain;
    for (const char letter : comment)
        plain += letter == '\n' || letter == '\r' || letter == '\t' ? ' ' : letter;
    return text::printable(plain);
}

std::optional<std::string> decode(std::string bytes, const std::string& file, Findings& findings) {
    text::DecodedText decoded = text::decodeText(std::move(bytes));
    if (!decoded.fault.empty()) {
        findings.error({file}, decoded.fault, "export the symbols as text with separators (CSV), in UTF-8");
        return std::nullopt;
    }
    if (decoded.encoding == text::Encoding::Windows1252)
        findings.note({file, decoded.notUtf8.line, decoded.notUtf8.column},
                      "read as Windows-1252, because it is not UTF-8");
    return std::move(decoded.utf8);
}

} // namespace

SymbolImport::SymbolImport(ChosenColumns chosenColumns) : chosen(std::move(chosenColumns)) {}

void SymbolImport::read(std::string bytes, const std::string& file, Findings& findings) {
    const std::optional<std::string> list = decode(std::move(bytes), file, findings);
    if (!list)
        return;
    const auto headsIn = [this](const CsvRow& row) { return countHeads(row, chosen); };
    CsvReader reader(*list, separatorOf(*list, headsIn), file, findings);
    SymbolColumns columns = chosen.numbers;
    CsvRow row;
    while (reader.next(row)) {
        const SymbolColumns here = columnsOf(row, chosen);
        const bool isHead = headsIn(row) >= 2 && here.areEnough();
        if (isHead)
            columns = here;
        else if (columns.areEnough() && !row.isComment())
            readRow(row, columns, file);
    }
    if (!columns.areEnough())
        findings.error({file, 1, 1}, "no row has heads for symbol and address",
                       "give the columns, such as --columns symbol=1,type=2,address=3,comment=4");
}

void SymbolImport::readRow(const CsvRow& row, const SymbolColumns& columns, const std::string& file) {
    const std::string& name = cellOf(row, columns, SymbolField::Symbol);
    const std::string& type = cellOf(row, columns, SymbolField::Type);
    const std::string& address = cellOf(row, columns, SymbolField::Address);
    if (name.empty() && address.empty())
        return;
    const std::string reason = take(name, type, address, cellOf(row, columns, SymbolField::Comment));
    if (!reason.empty())
        left.push_back({{file, row.start.line, row.start.column}, name, reason});
}

// Empty, or why nothing was taken.
std::string SymbolImport::take(const std::string& name, const std::string& type, const std::string& address,
                               const std::string& comment) {
    if (name.empty())
        return "it has no name";
    if (text::findControl(name) != std::string::npos)
        return "its name holds a control character";
    const ParsedElements parsed = parseSymbolElements(type, address);
    if (!parsed.elements)
        return parsed.reason;
    const SymbolElements& elements = *parsed.elements;
    if (taken.size() + elements.count > mostPoints)
        return "there are more than " + std::to_string(mostPoints) + " points";
    const auto nameOf = [&](unsigned i) { return elements.isRange ? name + '.' + std::to_string(i) : name; };
    for (unsigned i = 0; i < elements.count; ++i)
        if (names.count(nameOf(i)) > 0)
            return "its name is taken by one before it";
    for (unsigned i = 0; i < elements.count; ++i) {
        names.insert(nameOf(i));
        taken.push_back({nameOf(i),
                         {elements.first.media, elements.first.number + i},
                         elements.isFloat,
                         plainComment(comment)});
    }
    return {};
}

std::string pointTableText(const std::vector<ImportedPoint>& points) {
    std::string table = "id,name,kind,address,format,description\n";
    for (std::size_t i = 0; i < points.size(); ++i) {
        const ImportedPoint& point = points[i];
        table += std::to_string(i + 1) + ',' + cellText(point.name) + ',' +
                 (isBitMedia(point.address.media) ? "status" : "analog") + ',' + toText(point.address) + ',' +
                 (point.isFloat ? "float" : "") + ',' + cellText(point.comment) + '\n';
    }
    return table;
}

std::vector<std::string> leftOutLines(const std::vector<LeftOutSymbol>& symbols) {
    std::map<std::string, std::size_t> counts;
    std::size_t others = 0;
    std::vector<std::string> lines;
    for (const LeftOutSymbol& symbol : symbols) {
        if (counts.size() == mostReasons && counts.count(symbol.reason) == 0)
            ++others;
        else if (++counts[symbol.reason] <= shownOfAReason)
            lines.push_back(text::printable(
                symbol.place.file + ':' + std::to_string(symbol.place.line) + ": left out" +
                (symbol.name.empty() ? "" : " \"" + symbol.name + '"') + ": " + symbol.reason));
    }
    for (const auto& [reason, count] : counts)
        if (count > shownOfAReason)
            lines.push_back(
                text::printable(std::to_string(count - shownOfAReason) + " more left out: " + reason));
    if (others > 0)
        lines.push_back(std::to_string(others) + " more left out for other reasons");
    return lines;
}

} // namespace host
