#include "TableView.h"

#include <algorithm>

namespace host {

namespace {

using Kind = TableKey::Kind;

constexpr std::size_t mostMessages = 1'000; // kept

bool isLaterByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

void takeLastCharacter(std::string& text) {
    while (!text.empty() && isLaterByte(text.back()))
        text.pop_back();
    if (!text.empty())
        text.pop_back();
}

// A position moved by a key within 0 to `last`; `page` is how far a page goes.
std::size_t moved(Kind kind, std::size_t position, std::size_t last, std::size_t page) {
    switch (kind) {
    case Kind::Up:
        return position - std::min<std::size_t>(position, 1);
    case Kind::Down:
        return std::min(position + 1, last);
    case Kind::PageUp:
        return position - std::min(position, page);
    case Kind::PageDown:
        return std::min(position + page, last);
    case Kind::Home:
        return 0;
    case Kind::End:
        return last;
    default:
        return position;
    }
}

// Letters that stand for keys which not every keyboard has.
Kind movementOf(const TableKey& key) {
    if (key.kind != Kind::Character)
        return key.kind;
    return key.character == "k"   ? Kind::Up
           : key.character == "j" ? Kind::Down
           : key.character == " " ? Kind::PageDown
           : key.character == "g" ? Kind::Home
           : key.character == "G" ? Kind::End
                                  : Kind::Character;
}

} // namespace

TableView::TableView(const std::string& tableTitle, const ValueStore& valueStore)
    : title(tableTitle), store(valueStore), columnsInOrder(valueStore.points(), false),
      columnsByAge(valueStore.points(), true), list(valueStore) {}

void TableView::handle(const TableKey& key) {
    hasKey = true;
    notice.clear();
    if (asked != Asked::Nothing)
        handleInPrompt(key);
    else if (shown != Shown::Points)
        handleInText(key);
    else
        handleInPoints(key);
}

void TableView::tell(const Message& message) {
    kept.push_back(message);
    if (kept.size() > mostMessages) {
        kept.pop_front();
        ++forgotten;
    }
}

void TableView::turnPage() {
    first = first + inView < list.size() ? first + inView : 0;
    selected = first;
}

void TableView::handleInPoints(const TableKey& key) {
    const std::size_t last = list.size() - std::min<std::size_t>(list.size(), 1);
    const Kind movement = movementOf(key);
    if (movement == Kind::PageDown)
        first = std::min(first + inView, last);
    else if (movement == Kind::PageUp)
        first -= std::min(first, inView);
    select(moved(movement, selected, last, inView));
    if (key.kind == Kind::Escape) {
        arrangement = {};
        arrange();
    } else if (key.kind == Kind::Character) {
        command(key.character);
    }
}

void TableView::command(const std::string& character) {
    if (character == "/" || character == "r") {
        asked = character == "r" ? Asked::Rtu : Asked::Search;
        typed = asked == Asked::Rtu ? arrangement.rtu : "";
    } else if (character == "n" || character == "N") {
        search(character == "N", true);
    } else if (character == "b" || character == "a") {
        bool& setting = character == "b" ? arrangement.isNotGoodOnly : arrangement.isByAge;
        setting = !setting;
        arrange();
    } else if (character == "l") {
        if (selected < list.size())
            wantedLine = store.points().at(list.at(selected)).channel;
        show(Shown::Lines);
    } else if (character == "m") {
        show(Shown::Messages);
        firstText = kept.size() * 100; // the end, where the newest are
    } else if (character == "?" || character == "h") {
        show(Shown::Help);
    }
}

void TableView::show(Shown wanted) {
    shown = wanted;
    firstText = 0;
}

void TableView::handleInText(const TableKey& key) {
    const Kind movement = movementOf(key);
    if (key.kind == Kind::Escape || key.kind == Kind::Enter ||
        (key.kind == Kind::Character && movement == Kind::Character)) {
        show(Shown::Points);
        return;
    }
    const std::size_t last = textCount - std::min(textCount, textsInView);
    firstText = moved(movement, std::min(firstText, last), last, textsInView);
}

void TableView::handleInPrompt(const TableKey& key) {
    if (key.kind == Kind::Character)
        typed += key.character;
    else if (key.kind == Kind::Backspace)
        takeLastCharacter(typed);
    else if (key.kind == Kind::Escape)
        typed.clear();
    const bool isOver = key.kind == Kind::Enter || key.kind == Kind::Escape;
    if (asked == Asked::Rtu) { // shows at once what the letters so far leave
        arrangement.rtu = typed;
        arrange();
    } else if (isOver && !typed.empty()) {
        sought = typed;
        search(false, false);
    }
    if (isOver)
        asked = Asked::Nothing;
}

// The point stays selected where it is in the new list.
void TableView::arrange() {
    const bool hasSelected = selected < list.size();
    const PointIndex point = hasSelected ? list.at(selected) : 0;
    const std::size_t below = selected - std::min(selected, first);
    list.arrange(arrangement);
    arrangedMs = 0;
    select(list.positionOf(point));
    first = selected - std::min(selected, below);
}

void TableView::select(std::size_t position) {
    selected = list.size() == 0 ? 0 : std::min(position, list.size() - 1);
}

void TableView::search(bool isBackward, bool isNext) {
    if (sought.empty() || list.size() == 0)
        return;
    const std::size_t step = isBackward ? list.size() - 1 : 1; // round the list
    const std::size_t start = selected + (isNext ? step : 0);
    const std::optional<std::size_t> found = list.find(sought, start, isBackward);
    if (found)
        select(*found);
    else
        notice = "nothing here holds \"" + sought + "\"";
}

} // namespace host
