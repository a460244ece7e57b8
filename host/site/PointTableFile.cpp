#include "PointTableFile.h"

#include "CsvReader.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

std::string knownColumns() {
    std::string text = "the columns are ";
    for (const std::string& name : pointFieldNames)
        text += name + (name == pointFieldNames.back() ? "" : ", ");
    return text;
}

// The column names, as far as they are known; an unknown one stays in the list, so that the others keep their
// positions. Nothing when a column that is needed is missing.
std::optional<std::vector<std::string>> readHeader(const CsvRow& row, Findings& findings) {
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (const Field& cell : row.cells) {
        const auto known = std::find(pointFieldNames.begin(), pointFieldNames.end(), cell.text);
        if (known == pointFieldNames.end())
            findings.error(cell.place, "unknown column \"" + cell.text + "\"", knownColumns());
        else if (!seen.insert(cell.text).second)
            findings.error(cell.place, "column \"" + cell.text + "\" stands twice", "leave one of them out");
        names.push_back(cell.text);
    }
    bool isComplete = true;
    for (std::size_t i = 0; i < neededPointFields; ++i) {
        if (seen.count(pointFieldNames[i]) > 0)
            continue;
        findings.error(row.start, "no column \"" + pointFieldNames[i] + "\"",
                       "the first row names the columns; id, name, kind and address are needed");
        isComplete = false;
    }
    return isComplete ? std::optional(names) : std::nullopt;
}

void refuseLength(const CsvRow& row, std::size_t columns, Findings& findings) {
    const bool tooFew = row.cells.size() < columns;
    findings.error(tooFew ? row.end : row.cells[columns].place,
                   "row with " + std::to_string(row.cells.size()) + " columns, where the first row names " +
                       std::to_string(columns),
                   tooFew ? "add what is missing; an empty cell still needs its comma"
                          : "take out what is too much; a comma inside a cell needs quotes around it");
}

} // namespace

std::vector<Point> readPointTable(const std::string& text, const std::string& file, Findings& findings) {
    const std::vector<CsvRow> rows = readCsv(text, file, findings);
    std::vector<Point> points;
    if (rows.empty()) {
        findings.error({file, 1, 1}, "empty point table",
                       "the first row names the columns: id,name,kind,address");
        return points;
    }
    const std::optional<std::vector<std::string>> columns = readHeader(rows[0], findings);
    if (!columns)
        return points; // every row would be told as wrong for the header's fault

    const std::vector<std::string>& names = *columns;
    PointIds ids;
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        PointFields fields;
        for (std::size_t i = 0; i < std::min(names.size(), row->cells.size()); ++i)
            fields.emplace(names[i], row->cells[i]);
        ids.take(fields, row->start, findings);
        if (row->cells.size() != names.size())
            refuseLength(*row, names.size(), findings);
        else if (std::optional<Point> point = readPoint(fields, row->start, findings))
            points.push_back(std::move(*point));
    }
    return points;
}

} // namespace host
