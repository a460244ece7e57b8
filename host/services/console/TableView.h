#pragma once

#include "PointList.h"
#include "TableKeys.h"
#include "TableLayout.h"
#include "Terminal.h"
#include "runtime/Messages.h"

#include <deque>
#include <optional>

namespace host {

// The table of a running site: which points are in view and what else people look at. Keys and messages in,
// the rows of a terminal out; it knows no terminal. The store outlives it.
//
// States: the points (as made), and texts that take their place until they are left: the health of the lines,
// the messages, the help. A text for a search or an RTU's name is asked for in the last row.
// One thread.
class TableView {
public:
    TableView(const std::string& tableTitle, const ValueStore& valueStore);

    void handle(const TableKey& key);
    void tell(const Message& message);
    // The next points, for a terminal that nobody has a hand on; the first ones behind the last.
    void turnPage();
    // Whether a key has come: then pages turn by key alone.
    bool isInHand() const { return hasKey; }

    // What is told and still kept, the oldest first.
    const std::deque<Message>& messages() const { return kept; }
    std::size_t forgottenMessages() const { return forgotten; }

    // As many lines as the terminal has rows (four at least), none wider than its columns.
    std::vector<TableLine> rows(const terminal::Size& size, qint64 nowMs, const SiteFigures& figures);

private:
    enum class Shown { Points, Lines, Messages, Help };
    enum class Asked { Nothing, Search, Rtu };

    void handleInPoints(const TableKey& key);
    void handleInText(const TableKey& key);
    void handleInPrompt(const TableKey& key);
    void command(const std::string& character);
    void show(Shown wanted);
    void arrange();
    void select(std::size_t position);
    void search(bool isBackward, bool isNext);

    std::vector<TableLine> pointRows(std::size_t columns, std::size_t count, qint64 nowMs,
                                     const SiteFigures& figures);
    std::vector<TableLine> headingsBefore(std::size_t position, bool isAtTop,
                                          const SiteFigures& figures) const;
    std::size_t headingCount(std::size_t position, bool isAtTop) const;
    // How many points from `first` on find room in so many rows, with their headings.
    std::size_t fittingPoints(std::size_t first, std::size_t count) const;
    void bringSelectedIntoView(std::size_t count);
    std::vector<TableLine> textRows(std::size_t columns, std::size_t count, const SiteFigures& figures);
    std::vector<TableLine> lineTexts(std::size_t columns, const SiteFigures& figures);
    std::vector<TableLine> messageTexts(std::size_t columns) const;
    std::vector<TableLine> newestMessages(std::size_t columns, std::size_t most) const;
    std::string titleText(qint64 nowMs) const;
    std::string lastRow() const;

    const std::string title;
    const ValueStore& store;
    const PointColumns columnsInOrder;
    const PointColumns columnsByAge;

    PointList list;
    Arrangement arrangement;
    qint64 arrangedMs = 0;
    std::size_t selected = 0; // positions in the list
    std::size_t first = 0;    // in view
    std::size_t inView = 1;   // how many, when they were drawn last

    Shown shown = Shown::Points;
    std::size_t firstText = 0;                  // of the lines of a text
    const Channel* wantedLine = nullptr;        // whose health comes into view when it is drawn next
    std::size_t textCount = 0, textsInView = 1; // when they were drawn last

    Asked asked = Asked::Nothing;
    std::string typed;
    std::string sought;
    std::string notice; // until the next key
    bool hasKey = false;

    std::deque<Message> kept;
    std::size_t forgotten = 0;
};

} // namespace host
