#include "CsvReader.h"

namespace host {

namespace {

const std::string byteOrderMark = "\xEF\xBB\xBF";

// Makes room for a cell; one of an earlier row keeps its memory.
Cell& addCell(CsvRow& row, std::size_t place) {
    if (place == row.cells.size())
        row.cells.emplace_back();
    return row.cells[place];
}

} // namespace

CsvReader::CsvReader(const std::string& csvText, const std::string& csvFile, Findings& foundSoFar)
    : text(csvText), file(csvFile), findings(foundSoFar) {
    if (text.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
        position = byteOrderMark.size();
}

bool CsvReader::next(CsvRow& row) {
    while (!atEnd()) {
        readRow(row);
        const bool isEmpty = row.cells.size() == 1 && row.cells[0].text.empty();
        if (!isEmpty)
            return true;
    }
    return false;
}

void CsvReader::advance() {
    const char passed = text[position++];
    if (passed == '\n') {
        ++spot.line;
        spot.column = 1;
    } else if ((static_cast<unsigned char>(passed) & 0xC0) != 0x80) {
        ++spot.column; // the later bytes of a character take no column of their own
    }
}

void CsvReader::readRow(CsvRow& row) {
    row.start = spot;
    std::size_t count = 0;
    readCell(addCell(row, count++));
    while (!atRowEnd()) { // at a comma
        advance();
        readCell(addCell(row, count++));
    }
    row.cells.resize(count);
    row.end = spot;
    while (!atEnd() && current() == '\r')
        advance();
    if (!atEnd() && current() == '\n')
        advance();
}

void CsvReader::skipBlanks() {
    while (!atEnd() && (current() == ' ' || current() == '\t'))
        advance();
}

void CsvReader::readCell(Cell& cell) {
    skipBlanks();
    cell.text.clear();
    cell.spot = spot;
    if (!atEnd() && current() == '"') {
        readQuoted(cell);
        return;
    }
    while (!atRowEnd() && current() != ',')
        append(cell);
    cell.text.erase(cell.text.find_last_not_of(" \t") + 1);
}

void CsvReader::append(Cell& cell) {
    cell.text += current();
    advance();
}

void CsvReader::readQuoted(Cell& cell) {
    advance();
    for (;; append(cell)) {
        if (atEnd()) {
            refuse(cell.spot, "quote without an end");
            return;
        }
        if (current() != '"')
            continue;
        advance();
        if (atEnd() || current() != '"')
            break;
    }
    skipBlanks();
    if (atRowEnd() || current() == ',')
        return;
    refuse(spot, "text behind a closing quote");
    while (!atRowEnd() && current() != ',')
        advance();
}

void CsvReader::refuse(const Spot& at, const std::string& what) {
    findings.error({file, at.line, at.column}, what,
                   "a cell in quotes ends with a quote and a comma; a quote inside is written twice");
}

} // namespace host
