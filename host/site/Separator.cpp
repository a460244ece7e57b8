#include "Separator.h"

#include "AnyCase.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t rowsLookedAt = 20; // what may stand before the heads: a title, who exported it, when

struct Fit {
    std::size_t heads = 0;
    std::size_t cells = 0;

    bool isBetterThan(const Fit& other) const {
        return heads != other.heads ? heads > other.heads : cells > other.cells;
    }
};

Fit fitOf(const std::string& text, char separator, const HeadCount& headsIn) {
    Findings unheard;
    CsvReader reader(text, separator, {}, unheard);
    Fit best;
    CsvRow row;
    for (std::size_t i = 0; i < rowsLookedAt && reader.next(row); ++i) {
        const Fit fit{headsIn(row), row.isComment() ? 0 : row.cells.size()};
        if (fit.isBetterThan(best))
            best = fit;
    }
    return best;
}

} // namespace

char separatorOf(const std::string& text, const HeadCount& headsIn) {
    char chosen = ',';
    Fit best;
    for (const char separator : {',', ';', '\t'}) {
        const Fit fit = fitOf(text, separator, headsIn);
        if (fit.isBetterThan(best)) {
            best = fit;
            chosen = separator;
        }
    }
    return chosen;
}

bool namesSeparator(const CsvRow& row) {
    const std::string& first = row.cells.front().text;
    const bool isMark = isSameInAnyCase(first.substr(0, 4), "sep=") && first.size() <= 5;
    return isMark && std::all_of(row.cells.begin() + 1, row.cells.end(),
                                 [](const Cell& cell) { return cell.text.empty(); });
}

} // namespace host
