#pragma once

#include "Terminal.h"
#include "runtime/HostRuntime.h"
#include "values/ValueStore.h"

namespace host {

// More of them would take too much of the table's room.
constexpr std::size_t mostTableMessages = 4;

// What a redraw of the table shows.
struct TableContents {
    std::string title;
    qint64 nowMs = 0; // since 1970: what ages are counted from
    const ValueStore* values = nullptr;
    std::size_t longestName = 0; // of all points, in characters
    SiteFigures figures;
    std::vector<std::string> messages; // the newest last; as many as find room, mostTableMessages at most
};

struct TableLine {
    enum class Style { Plain, Heading, Bad, Dim };
    Style style = Style::Plain;
    std::string text;
};

struct TablePage {
    std::vector<TableLine> lines; // no more than the terminal's rows, none wider than its columns
    std::size_t pageCount = 1;
};

// Lays page `page` (counted round) of the table out for a terminal of `size`. Points that do not fit onto one
// page go to the next ones, each under the headings of its channel and RTU.
TablePage layOutTable(const TableContents& contents, const terminal::Size& size, std::size_t page);

// `text` in a field of `columns` characters, cut or filled with blanks. Counts characters, not bytes, and
// shows control characters as "?".
std::string fitText(const std::string& text, std::size_t columns, bool rightAligned = false);

// For TableContents; looks at every name.
std::size_t longestNameOf(const PointTable& points);

} // namespace host
