#include "PointTableFile.h"

#include "AnyCase.h"
#include "PointFields.h"
#include "Separator.h"

#include <ControlCharacters.h>
#include <TextEncoding.h>

#include <algorithm>

namespace host {

namespace {

const char* const neededColumns = "the first row names the columns, between commas, semicolons or tabs; id, "
                                  "name, kind and address are needed";

std::string knownColumns() {
    std::string text = "the columns are ";
    for (const PointColumn& column : pointColumns)
        text += column.name + ", ";
    return text + "and what begins with # or is named in ignore";
}

// The field of a column with this head; pointFieldCount where there is none.
std::size_t fieldNamed(const std::string& head) {
    const auto found =
        std::find_if(pointColumns.begin(), pointColumns.end(),
                     [&head](const PointColumn& column) { return isSameInAnyCase(column.name, head); });
    return static_cast<std::size_t>(found - pointColumns.begin());
}

std::size_t countFields(const CsvRow& row) {
    return static_cast<std::size_t>(std::count_if(row.cells.begin(), row.cells.end(), [](const Cell& cell) {
        return fieldNamed(cell.text) < pointFieldCount;
    }));
}

bool isIgnored(const std::string& head, const IgnoredColumns& ignored) {
    return std::any_of(ignored.begin(), ignored.end(),
                       [&head](const std::string& name) { return isSameInAnyCase(name, head); });
}

// A first column may be one that nobody reads: "#,id,name,kind,address".
bool isHead(const CsvRow& row) {
    return !row.isComment() || countFields(row) >= neededPointFields;
}

// The table's bytes as text. Nothing, with the finding told, for what is no text.
std::optional<std::string> decode(std::string bytes, const std::string& file, Findings& findings) {
    text::DecodedText decoded = text::decodeText(std::move(bytes));
    if (!decoded.fault.empty()) {
        findings.error({file}, decoded.fault, "save the table as comma-separated values (CSV), in UTF-8");
        return std::nullopt;
    }
    if (decoded.encoding == text::Encoding::Windows1252)
        findings.note({file, decoded.notUtf8.line, decoded.notUtf8.column},
                      "read as Windows-1252, because it is not UTF-8");
    const std::size_t control = text::findControlInLines(decoded.utf8);
    if (control != std::string::npos) {
        const text::Position at = text::positionOf(decoded.utf8, control);
        findings.error({file, at.line, at.column},
                       "control character " + text::controlName(decoded.utf8, control),
                       "take it out, and any that follow; a table is made of what can be shown");
    }
    return std::move(decoded.utf8);
}

// What spreadsheets make of a number: "12,0" or "12.00" is 12, "0,5" is 0.5. Three decimals are left as they
// are: "1.000" may be a thousand.
void simplifyNumber(std::string& number, bool hasDecimalComma) {
    constexpr std::size_t mostZeros = 2;
    if (number.empty())
        return;
    if (hasDecimalComma)
        std::replace(number.begin(), number.end(), ',', '.');
    const std::size_t mark = number.find('.');
    if (mark == std::string::npos || mark == 0)
        return;
    const std::size_t decimals = number.size() - mark - 1;
    if (decimals > 0 && decimals <= mostZeros && number.find_first_not_of('0', mark + 1) == std::string::npos)
        number.resize(mark);
}

// Where a row's fields stand.
struct Columns {
    std::size_t count = 0;
    std::array<std::size_t, pointFieldCount> ofField{}; // count where there is none
    std::vector<std::size_t> unnamed;
};

class TableReader {
public:
    TableReader(const std::string& tableText, const std::string& tableFile,
                const IgnoredColumns& ignoredColumns, Findings& foundSoFar)
        : text(tableText), file(tableFile), ignored(ignoredColumns), findings(foundSoFar),
          separator(separatorOf(tableText, countFields)), reader(text, separator, file, findings) {}

    std::vector<Point> read() {
        if (!findHead())
            findings.error({file, 1, 1}, "empty point table", neededColumns);
        else if (readHead())
            readRows();
        return std::move(points);
    }

private:
    bool findHead() {
        while (reader.next(row))
            if (isHead(row) && !namesSeparator(row))
                return true;
        return false;
    }

    // False when a column that is needed is missing: every row would be told as wrong for the head's fault.
    bool readHead() {
        columns.count = row.cells.size();
        columns.ofField.fill(columns.count);
        if (countFields(row) == 0) {
            findings.error(placeOf(row.start),
                           "no column of a point table in the first row: \"" + firstCells() + "\"",
                           neededColumns);
            return false;
        }
        for (std::size_t column = 0; column < columns.count; ++column)
            readHeadCell(column);
        return hasNeededColumns();
    }

    // An unknown column counts, so that the others keep their positions.
    void readHeadCell(std::size_t column) {
        const Cell& cell = row.cells[column];
        if (cell.text.compare(0, 1, "#") == 0 || isIgnored(cell.text, ignored))
            return;
        if (cell.text.empty()) {
            columns.unnamed.push_back(column);
            return;
        }
        const std::size_t known = fieldNamed(cell.text);
        if (known == pointFieldCount)
            findings.error(placeOf(cell.spot), "unknown column \"" + cell.text + "\"", knownColumns());
        else if (columns.ofField[known] < columns.count)
            findings.error(placeOf(cell.spot), "column \"" + cell.text + "\" stands twice",
                           "leave one of them out");
        else
            columns.ofField[known] = column;
    }

    bool hasNeededColumns() {
        std::string missing;
        for (std::size_t i = 0; i < neededPointFields; ++i)
            if (columns.ofField[i] == columns.count)
                missing += (missing.empty() ? "\"" : ", \"") + pointColumns[i].name + '"';
        if (!missing.empty())
            findings.error(placeOf(row.start), "no column " + missing, neededColumns);
        return missing.empty();
    }

    std::string firstCells() const {
        constexpr std::size_t longest = 60; // characters that show what kind of file it is
        std::string cells;
        for (const Cell& cell : row.cells)
            cells += (cells.empty() ? "" : std::string(1, separator)) + cell.text;
        return cells.size() <= longest ? cells : cells.substr(0, longest) + "...";
    }

    void readRows() {
        constexpr std::size_t shortestRow = 14; // "1,A,status,I1" and its line end
        const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
        const std::size_t rows = std::min(lines, text.size() / shortestRow);
        points.reserve(rows);
        PointIds ids;
        ids.reserve(rows);
        EngineeringPool pool;
        while (reader.next(row)) {
            if (row.isComment())
                continue;
            const PointFields fields = takeFields();
            const PointPlace place{file, row.start};
            ids.take(fields, place, findings);
            refuseUnnamed();
            if (row.cells.size() != columns.count)
                refuseLength();
            else if (std::optional<Point> point = readPoint(fields, place, pool, findings))
                points.push_back(std::move(*point));
        }
    }

    PointFields takeFields() {
        PointFields fields{};
        for (std::size_t i = 0; i < pointFieldCount; ++i) {
            if (columns.ofField[i] >= std::min(columns.count, row.cells.size()))
                continue;
            Cell& cell = row.cells[columns.ofField[i]];
            if (pointColumns[i].isNumber)
                simplifyNumber(cell.text, separator != ',');
            fields[i] = &cell;
        }
        return fields;
    }

    // Spreadsheets save empty columns beside a table.
    void refuseUnnamed() {
        for (const std::size_t column : columns.unnamed)
            if (column < row.cells.size() && !row.cells[column].text.empty())
                findings.error(
                    placeOf(row.cells[column].spot), "cell in a column without a name",
                    "name the column in the first row, with # at the beginning if nobody is to read it");
    }

    void refuseLength() {
        const bool tooFew = row.cells.size() < columns.count;
        findings.error(placeOf(tooFew ? row.end : row.cells[columns.count].spot),
                       "row with " + std::to_string(row.cells.size()) +
                           " columns, where the first row names " + std::to_string(columns.count),
                       tooFew
                           ? "add what is missing; an empty cell still needs its separator"
                           : "take out what is too much; a separator inside a cell needs quotes around it");
    }

    Place placeOf(const Spot& spot) const { return {file, spot.line, spot.column}; }

    const std::string& text;
    const std::string& file;
    const IgnoredColumns& ignored;
    Findings& findings;
    const char separator;
    CsvReader reader;
    CsvRow row;
    Columns columns;
    std::vector<Point> points;
};

} // namespace

std::vector<Point> readPointTable(std::string bytes, const std::string& file, const IgnoredColumns& ignored,
                                  Findings& findings) {
    const std::optional<std::string> text = decode(std::move(bytes), file, findings);
    return text ? TableReader(*text, file, ignored, findings).read() : std::vector<Point>();
}

} // namespace host
