#include "Screen.h"

#include "TerminalSequences.h"

namespace host {

std::string Screen::rowText(const TableLine& line) const {
    std::string sequence;
    switch (line.style) {
    case TableLine::Style::Heading:
        sequence = terminal::bold;
        break;
    case TableLine::Style::Bad:
        sequence = hasColours ? terminal::red : terminal::bold;
        break;
    case TableLine::Style::Dim:
        sequence = terminal::dim;
        break;
    case TableLine::Style::Plain:
        break;
    }
    if (line.isSelected)
        sequence += terminal::reverse;
    return sequence + line.text + (sequence.empty() ? "" : terminal::plain);
}

std::string Screen::draw(const std::vector<TableLine>& lines, const terminal::Size& size) {
    std::string text;
    if (rows.empty() || size.columns != drawnFor.columns || size.rows != drawnFor.rows) {
        rows.assign(lines.size(), {});
        drawnFor = size;
        text = std::string(terminal::home) + terminal::clearBelow;
    }
    rows.resize(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string row = rowText(lines[i]);
        if (row == rows[i])
            continue;
        text += "\x1b[" + std::to_string(i + 1) + ";1H" + row + terminal::clearLineEnd;
        rows[i] = std::move(row);
    }
    return text;
}

} // namespace host
