#pragma once

#include "Finding.h"

#include <string>
#include <vector>

namespace host {

// A text and where it stands in its file.
struct Cell {
    std::string text;
    Spot spot;
};

// A row of a table of comma-separated values.
struct CsvRow {
    std::vector<Cell> cells;
    Spot start;
    Spot end; // just behind the last cell
};

// Cuts a text into rows. Cells may stand in double quotes, with a quote inside written twice; blanks around
// a cell do not count; empty lines and a byte-order mark are passed over. Text and findings outlive it.
class CsvReader {
public:
    CsvReader(const std::string& csvText, const std::string& csvFile, Findings& foundSoFar);

    // Reads the next row into `row`, whose memory is used again. False when there is none.
    bool next(CsvRow& row);

private:
    bool atEnd() const { return position >= text.size(); }
    char current() const { return text[position]; }
    bool atRowEnd() const { return atEnd() || current() == '\n' || current() == '\r'; }

    void advance();
    void readRow(CsvRow& row);
    void skipBlanks();
    void readCell(Cell& cell);
    void append(Cell& cell);
    void readQuoted(Cell& cell);
    void refuse(const Spot& at, const std::string& what);

    const std::string& text;
    const std::string file;
    Findings& findings;
    std::size_t position = 0;
    Spot spot{1, 1};
};

} // namespace host
