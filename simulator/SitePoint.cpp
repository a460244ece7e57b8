#include "SitePoint.h"

#include "Units.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

namespace sim {

namespace {

constexpr unsigned highestAddress = 65535;

// Without the blanks in it, in small letters.
std::string plain(const std::string& text) {
    std::string result;
    for (const char character : text)
        if (std::isspace(static_cast<unsigned char>(character)) == 0)
            result += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return result;
}

// Cells may stand in double quotes, within which a comma is no separator.
std::vector<std::string> cellsOf(const std::string& row, char separator) {
    std::vector<std::string> cells(1);
    bool isQuoted = false;
    for (const char character : row) {
        if (character == '"')
            isQuoted = !isQuoted;
        else if (character == separator && !isQuoted)
            cells.emplace_back();
        else
            cells.back() += character;
    }
    return cells;
}

std::size_t placeOf(const std::vector<std::string>& headings, const std::string& name) {
    const auto found = std::find_if(headings.begin(), headings.end(),
                                    [&name](const std::string& heading) { return plain(heading) == name; });
    return static_cast<std::size_t>(found - headings.begin());
}

std::string cellAt(const std::vector<std::string>& cells, std::size_t place) {
    return place < cells.size() ? cells[place] : std::string();
}

} // namespace

std::optional<SitePoint> parsePoint(const std::string& address, const std::string& format) {
    const std::string text = plain(address);
    const auto media = text.size() < 2
                           ? std::nullopt
                           : mediaOf(static_cast<char>(std::toupper(static_cast<unsigned char>(text[0]))));
    const auto number =
        media ? parseInteger(std::string_view(text).substr(1), 0, highestAddress) : std::nullopt;
    if (!number)
        return std::nullopt;
    return SitePoint{*media, static_cast<unsigned>(*number), plain(format) == "float",
                     plain(format) == "ieee"};
}

std::vector<SitePoint> readPointTable(const std::string& file) {
    std::ifstream table(std::filesystem::u8path(file));
    std::string row;
    std::getline(table, row);
    if (row.compare(0, 3, "\xEF\xBB\xBF") == 0) // how some programs begin a text
        row.erase(0, 3);
    const char separator = row.find(';') != std::string::npos ? ';' : ',';
    const std::vector<std::string> headings = cellsOf(row, separator);
    const std::size_t addresses = placeOf(headings, "address");
    const std::size_t formats = placeOf(headings, "format");
    std::vector<SitePoint> points;
    while (std::getline(table, row)) {
        const std::vector<std::string> cells = cellsOf(row, separator);
        if (const auto point = parsePoint(cellAt(cells, addresses), cellAt(cells, formats)))
            points.push_back(*point);
    }
    return points;
}

} // namespace sim
