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

    bool isComment() const { return !cells.empty() && cells.front().text.compare(0, 1, "#") == 0; }
};

// Cuts a text into rows. Cells may stand in double quotes, with a quote inside written twice, but for rows
// that begin with "#": they are comments, in which a quote is a quote. Blanks around a cell do not count;
// rows whose cells are all empty are passed over. Text and findings outlive it.
class CsvReader {
public:
    CsvReader(const std::string& csvText, char cellSeparator, const std::string& csvFile,
              Findings& foundSoFar);

    // Reads the next row into `row`, whose memory is used again. False when there is none.
    bool next(CsvRow& row);

private:
    bool atEnd() const { return position >= text.size(); }
    char current() const { return text[position]; }
    bool atRowEnd() const { return atEnd() || current() == '\n' || current() == '\r'; }
    bool atCellEnd() const { return atRowEnd() || current() == separator; }

    void advance();
    void readRow(CsvRow& row);
    void skipBlanks();
    void readCell(Cell& cell, bool mayBeQuoted);
    void readPlainCell(Cell& cell);
    void append(Cell& cell);
    void readQuoted(Cell& cell);
    void refuse(const Spot& at, const std::string& what);

    const std::string& text;
    const char separator;
    const std::string file;
    Findings& findings;
    std::size_t position = 0;
    Spot spot{1, 1};
};

} // namespace host
