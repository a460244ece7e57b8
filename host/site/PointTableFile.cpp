#include "PointTableFile.h"

#include "PointFields.h"

#include <algorithm>

namespace host {

namespace {

std::string knownColumns() {
    std::string text = "the columns are ";
    for (const std::string& name : pointFieldNames)
        text += name + (name == pointFieldNames.back() ? "" : ", ");
    return text;
}

// Where a row's fields stand.
struct Columns {
    std::size_t count = 0;
    std::array<std::size_t, pointFieldCount> ofField{}; // count where there is none
};

// An unknown column counts, so that the others keep their positions. Nothing when a column that is needed is
// missing.
std::optional<Columns> readHeader(const CsvRow& row, const std::string& file, Findings& findings) {
    Columns columns;
    columns.count = row.cells.size();
    columns.ofField.fill(columns.count);
    for (std::size_t column = 0; column < columns.count; ++column) {
        const Cell& cell = row.cells[column];
        const Place place{file, cell.spot.line, cell.spot.column};
        const auto known = std::find(pointFieldNames.begin(), pointFieldNames.end(), cell.text);
        if (known == pointFieldNames.end()) {
            findings.error(place, "unknown column \"" + cell.text + "\"", knownColumns());
            continue;
        }
        std::size_t& field = columns.ofField[static_cast<std::size_t>(known - pointFieldNames.begin())];
        if (field < columns.count)
            findings.error(place, "column \"" + cell.text + "\" stands twice", "leave one of them out");
        else
            field = column;
    }
    bool isComplete = true;
    for (std::size_t i = 0; i < neededPointFields; ++i) {
        if (columns.ofField[i] < columns.count)
            continue;
        findings.error({file, row.start.line, row.start.column}, "no column \"" + pointFieldNames[i] + "\"",
                       "the first row names the columns; id, name, kind and address are needed");
        isComplete = false;
    }
    return isComplete ? std::optional(columns) : std::nullopt;
}

PointFields fieldsOf(const CsvRow& row, const Columns& columns) {
    PointFields fields{};
    for (std::size_t i = 0; i < pointFieldCount; ++i)
        if (columns.ofField[i] < std::min(columns.count, row.cells.size()))
            fields[i] = &row.cells[columns.ofField[i]];
    return fields;
}

void refuseLength(const CsvRow& row, std::size_t columns, const std::string& file, Findings& findings) {
    const bool tooFew = row.cells.size() < columns;
    const Spot& spot = tooFew ? row.end : row.cells[columns].spot;
    findings.error({file, spot.line, spot.column},
                   "row with " + std::to_string(row.cells.size()) + " columns, where the first row names " +
                       std::to_string(columns),
                   tooFew ? "add what is missing; an empty cell still needs its comma"
                          : "take out what is too much; a comma inside a cell needs quotes around it");
}

} // namespace

std::vector<Point> readPointTable(const std::string& text, const std::string& file, Findings& findings) {
    CsvReader reader(text, file, findings);
    std::vector<Point> points;
    CsvRow row;
    if (!reader.next(row)) {
        findings.error({file, 1, 1}, "empty point table",
                       "the first row names the columns: id,name,kind,address");
        return points;
    }
    const std::optional<Columns> columns = readHeader(row, file, findings);
    if (!columns) { // every row would be told as wrong for the header's fault
        while (reader.next(row)) {
        }
        return points;
    }
    points.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    PointIds ids;
    while (reader.next(row)) {
        const PointFields fields = fieldsOf(row, *columns);
        const PointPlace place{file, row.start};
        ids.take(fields, place, findings);
        if (row.cells.size() != columns->count)
            refuseLength(row, columns->count, file, findings);
        else if (std::optional<Point> point = readPoint(fields, place, findings))
            points.push_back(std::move(*point));
    }
    return points;
}

} // namespace host
