#include "CsvReader.h"

namespace host {

namespace {

const std::string byteOrderMark = "\xEF\xBB\xBF";
const std::string quoteRemedy =
    "a cell in quotes ends with a quote and a comma; a quote inside is written twice";

class CsvReader {
public:
    CsvReader(const std::string& csvText, const std::string& file, Findings& foundSoFar)
        : text(csvText), findings(foundSoFar) {
        place = {file, 1, 1};
        if (text.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
            position = byteOrderMark.size();
    }

    std::vector<CsvRow> read() {
        std::vector<CsvRow> rows;
        while (!atEnd()) {
            CsvRow row = readRow();
            const bool isEmpty = row.cells.size() == 1 && row.cells[0].text.empty();
            if (!isEmpty)
                rows.push_back(std::move(row));
        }
        return rows;
    }

private:
    bool atEnd() const { return position >= text.size(); }
    char current() const { return text[position]; }
    bool atRowEnd() const { return atEnd() || current() == '\n' || current() == '\r'; }

    void advance() {
        const char passed = text[position++];
        if (passed == '\n') {
            ++place.line;
            place.column = 1;
        } else if ((static_cast<unsigned char>(passed) & 0xC0) != 0x80) {
            ++place.column; // the later bytes of a character take no column of their own
        }
    }

    CsvRow readRow() {
        CsvRow row;
        row.start = place;
        row.cells.push_back(readCell());
        while (!atRowEnd()) { // at a comma
            advance();
            row.cells.push_back(readCell());
        }
        row.end = place;
        while (!atEnd() && current() == '\r')
            advance();
        if (!atEnd() && current() == '\n')
            advance();
        return row;
    }

    void skipBlanks() {
        while (!atEnd() && (current() == ' ' || current() == '\t'))
            advance();
    }

    Field readCell() {
        skipBlanks();
        Field cell{"", place};
        if (!atEnd() && current() == '"') {
            readQuoted(cell);
            return cell;
        }
        while (!atRowEnd() && current() != ',')
            append(cell);
        cell.text.erase(cell.text.find_last_not_of(" \t") + 1);
        return cell;
    }

    void append(Field& cell) {
        cell.text += current();
        advance();
    }

    void readQuoted(Field& cell) {
        advance();
        for (;; append(cell)) {
            if (atEnd()) {
                findings.error(cell.place, "quote without an end", quoteRemedy);
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
        findings.error(place, "text behind a closing quote", quoteRemedy);
        while (!atRowEnd() && current() != ',')
            advance();
    }

    const std::string& text;
    Findings& findings;
    std::size_t position = 0;
    Place place;
};

} // namespace

std::vector<CsvRow> readCsv(const std::string& text, const std::string& file, Findings& findings) {
    return CsvReader(text, file, findings).read();
}

} // namespace host
