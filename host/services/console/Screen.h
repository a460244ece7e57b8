#pragma once

#include "TableLayout.h"
#include "Terminal.h"

#include <string>
#include <vector>

namespace host {

// Knows what stands on a terminal's screen, and makes the least that has to be sent so that something else
// stands there. One thread.
class Screen {
public:
    explicit Screen(bool mayUseColours) : hasColours(mayUseColours) {}

    // The bytes that make the screen show these lines, one a row from the first on; empty when it does.
    std::string draw(const std::vector<TableLine>& lines, const terminal::Size& size);
    // Somebody else may have written to it: all is drawn anew.
    void forget() { rows.clear(); }

private:
    std::string rowText(const TableLine& line) const;

    const bool hasColours;
    terminal::Size drawnFor{0, 0};
    std::vector<std::string> rows; // with their sequences; empty when nothing is known
};

} // namespace host
