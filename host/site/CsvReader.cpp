#include "CsvReader.h"

#include <algorithm>

namespace host {

namespace {

// Makes room for a cell; one of an earlier row keeps its memory.
Cell& addCell(CsvRow& row, std::size_t place) {
    if (place == row.cells.size())
        row.cells.emplace_back();
    return row.cells[place];
}

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

// Those of a character take no column of their own.
bool isLaterByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

CsvReader::CsvReader(const std::string& csvText, char cellSeparator, const std::string& csvFile,
                     Findings& foundSoFar)
    : text(csvText), separator(cellSeparator), file(csvFile), findings(foundSoFar) {}

bool CsvReader::next(CsvRow& row) {
    while (!atEnd()) {
        readRow(row);
        if (std::any_of(row.cells.begin(), row.cells.end(),
                        [](const Cell& cell) { return !cell.text.empty(); }))
            return true;
    }
    return false;
}

void CsvReader::advance() {
    const char passed = text[position++];
    if (passed == '\n') {
        ++spot.line;
        spot.column = 1;
    } else if (!isLaterByte(passed)) {
        ++spot.column;
    }
}

void CsvReader::readRow(CsvRow& row) {
    skipBlanks();
    row.start = spot;
    std::size_t count = 0;
    const bool isComment = !atEnd() && current() == '#';
    readCell(addCell(row, count++), !isComment);
    while (!atRowEnd()) { // at a separator
        advance();
        readCell(addCell(row, count++), !isComment);
    }
    row.cells.resize(count);
    row.end = spot;
    while (!atEnd() && current() == '\r')
        advance();
    if (!atEnd() && current() == '\n')
        advance();
}

void CsvReader::skipBlanks() {
    while (!atEnd() && isBlank(current()) && current() != separator)
        advance();
}

void CsvReader::readCell(Cell& cell, bool mayBeQuoted) {
    skipBlanks();
    if (atEnd() || current() != '"' || !mayBeQuoted) {
        readPlainCell(cell);
        return;
    }
    cell.text.clear();
    cell.spot = spot;
    readQuoted(cell);
}

void CsvReader::readPlainCell(Cell& cell) {
    cell.spot = spot;
    const char* const start = text.data() + position;
    const char* const textEnd = text.data() + text.size();
    const char* end = start;
    unsigned laterBytes = 0;
    for (; end != textEnd && *end != separator && *end != '\n' && *end != '\r'; ++end)
        laterBytes += isLaterByte(*end) ? 1 : 0;
    const auto size = static_cast<std::size_t>(end - start);
    position += size;
    spot.column += static_cast<unsigned>(size) - laterBytes;
    while (end != start && isBlank(end[-1]))
        --end;
    if (end == start)
        cell.text.clear();
    else
        cell.text.assign(start, static_cast<std::size_t>(end - start));
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
    if (atCellEnd())
        return;
    refuse(spot, "text behind a closing quote");
    while (!atCellEnd())
        advance();
}

void CsvReader::refuse(const Spot& at, const std::string& what) {
    findings.error(
        {file, at.line, at.column}, what,
        "a cell in quotes ends with a quote and what separates cells; a quote inside is written twice");
}

} // namespace host
