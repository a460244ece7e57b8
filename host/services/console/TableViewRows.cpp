#include "TableView.h"

#include "values/TimeText.h"

#include <algorithm>

namespace host {

namespace {

using Style = TableLine::Style;

constexpr std::size_t leastRows = 4; // below, nothing sensible can be shown
// What messages may take of the points' room: one row in so many.
constexpr std::size_t rowsForOneMessageRow = 5;
constexpr std::size_t timeColumns = 10; // "10:30:00  "
constexpr qint64 rearrangeMs = 1'000;   // of a list that follows the states of its points

constexpr const char* helpTexts[] = {
    "Up Down PgUp PgDn Home End   move; also k j, the space bar, g and G",
    "/ TEXT Enter                 go to the next point whose name, address, RTU or description holds TEXT",
    "n N                          the next one, the one before",
    "r TEXT Enter                 only RTUs whose names hold TEXT",
    "b                            only points that are not good, and all again",
    "a                            by age, the oldest values first, and in the order of the site file again",
    "l                            the health of the selected point's line, and of all",
    "m                            the messages",
    "Esc                          all points in the order of the site file; leaves this text",
    "Ctrl-C                       end the host; Ctrl-Z lets it rest, fg goes on",
};

std::string clockText(qint64 timeMs) {
    return localTimeText(timeMs).substr(11, 8);
}

const RtuFigures* figuresOf(const SiteFigures& figures, const Rtu* rtu) {
    const auto found = std::find_if(figures.rtus.begin(), figures.rtus.end(),
                                    [rtu](const RtuFigures& one) { return one.rtu == rtu; });
    return found == figures.rtus.end() ? nullptr : &*found;
}

ChannelFigures figuresOf(const SiteFigures& figures, const Channel* channel) {
    const auto found = std::find_if(figures.channels.begin(), figures.channels.end(),
                                    [channel](const ChannelFigures& one) { return one.channel == channel; });
    return found == figures.channels.end() ? ChannelFigures{channel, {}} : *found;
}

} // namespace

std::vector<TableLine> TableView::rows(const terminal::Size& size, qint64 nowMs, const SiteFigures& figures) {
    const std::size_t columns = std::max(1U, size.columns);
    const std::size_t count = std::max<std::size_t>(leastRows, size.rows);
    if ((arrangement.isByAge || arrangement.isNotGoodOnly) && nowMs - arrangedMs >= rearrangeMs) {
        arrange();
        arrangedMs = nowMs;
    }
    std::vector<TableLine> news;
    if (shown != Shown::Messages)
        news = newestMessages(columns, count / rowsForOneMessageRow);
    const std::size_t body = count - 2 - news.size();
    const std::vector<TableLine> middle =
        shown == Shown::Points ? pointRows(columns, body, nowMs, figures) : textRows(columns, body, figures);
    std::vector<TableLine> result{{Style::Dim, titleText(nowMs)}}; // tells what has come into view
    result.insert(result.end(), middle.begin(), middle.end());
    result.resize(1 + body);
    result.insert(result.end(), news.begin(), news.end());
    result.push_back({Style::Dim, lastRow()});
    for (TableLine& line : result)
        line.text = cutText(line.text, columns);
    return result;
}

std::size_t TableView::headingCount(std::size_t position, bool isAtTop) const {
    if (arrangement.isByAge)
        return 0;
    if (isAtTop)
        return 2;
    const PointRef here = store.points().at(list.at(position));
    const PointRef before = store.points().at(list.at(position - 1));
    return (here.channel != before.channel ? 1U : 0U) + (here.rtu != before.rtu ? 1U : 0U);
}

std::vector<TableLine> TableView::headingsBefore(std::size_t position, bool isAtTop,
                                                 const SiteFigures& figures) const {
    const std::size_t count = headingCount(position, isAtTop);
    const PointRef ref = store.points().at(list.at(position));
    std::vector<TableLine> headings;
    if (count == 2)
        headings.push_back({Style::Heading, channelHeading(figuresOf(figures, ref.channel))});
    if (count > 0)
        headings.push_back({Style::Heading, rtuHeading(*ref.rtu, figuresOf(figures, ref.rtu))});
    return headings;
}

std::size_t TableView::fittingPoints(std::size_t from, std::size_t count) const {
    std::size_t used = 0;
    std::size_t points = 0;
    for (std::size_t position = from; position < list.size(); ++position) {
        used += headingCount(position, position == from) + 1;
        if (used > count && points > 0)
            break;
        ++points;
        if (used >= count)
            break;
    }
    return std::max<std::size_t>(1, points);
}

void TableView::bringSelectedIntoView(std::size_t count) {
    first = std::min(first, selected);
    first = std::max(first, selected - std::min(selected, count));
    while (selected >= first + fittingPoints(first, count))
        ++first;
    while (first > 0 && first - 1 + fittingPoints(first - 1, count) >= list.size())
        --first; // no empty rows behind the last point
    inView = fittingPoints(first, count);
}

std::vector<TableLine> TableView::pointRows(std::size_t columns, std::size_t count, qint64 nowMs,
                                            const SiteFigures& figures) {
    if (list.size() == 0)
        return {{Style::Dim, "  no point is like that; Esc shows all"}};
    select(selected);
    bringSelectedIntoView(count);
    const PointColumns& text = arrangement.isByAge ? columnsByAge : columnsInOrder;
    std::vector<TableLine> lines;
    for (std::size_t position = first; position < std::min(first + inView, list.size()); ++position) {
        const std::vector<TableLine> headings = headingsBefore(position, position == first, figures);
        lines.insert(lines.end(), headings.begin(), headings.end());
        const PointIndex point = list.at(position);
        lines.push_back(text.line(store.points().at(point), store.state(point), nowMs, columns));
        lines.back().isSelected = hasKey && position == selected;
    }
    return lines;
}

std::vector<TableLine> TableView::textRows(std::size_t columns, std::size_t count,
                                           const SiteFigures& figures) {
    std::vector<TableLine> texts;
    if (shown == Shown::Lines)
        texts = lineTexts(columns, figures);
    else if (shown == Shown::Messages)
        texts = messageTexts(columns);
    else
        for (const char* const text : helpTexts)
            texts.push_back({Style::Plain, text});
    textCount = texts.size();
    textsInView = count;
    firstText = std::min(firstText, textCount - std::min(textCount, count));
    texts.erase(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(firstText));
    texts.resize(std::min(texts.size(), count));
    return texts;
}

std::vector<TableLine> TableView::lineTexts(std::size_t columns, const SiteFigures& figures) {
    std::vector<TableLine> texts;
    for (const ChannelFigures& channel : figures.channels) {
        if (wantedLine == channel.channel)
            firstText = texts.size();
        const ChannelFigures withoutTrouble{channel.channel, {}};
        texts.push_back({Style::Heading, channelHeading(withoutTrouble)});
        const Style style = channel.status.connected ? Style::Plain : Style::Bad;
        for (const std::string& text : wrapText(" " + channelHealth(channel.status), columns, 1))
            texts.push_back({style, text});
        for (const RtuFigures& rtu : figures.rtus) {
            if (rtu.channel != channel.channel)
                continue;
            const bool isBad = rtu.rtu->enabled && !rtu.status.connected;
            texts.push_back({isBad ? Style::Bad : Style::Plain, rtuHeading(*rtu.rtu, &rtu)});
        }
        texts.push_back({});
    }
    wantedLine = nullptr;
    return texts;
}

std::vector<TableLine> TableView::messageTexts(std::size_t columns) const {
    std::vector<TableLine> texts;
    if (kept.empty())
        texts.push_back({Style::Dim, "  no message so far"});
    for (const Message& message : kept)
        for (const std::string& text :
             wrapText(clockText(message.timeMs) + "  " + message.text, columns, timeColumns))
            texts.push_back({Style::Plain, text});
    return texts;
}

// The newest ones, as many as find room whole; of one that is longer than the room its beginning.
std::vector<TableLine> TableView::newestMessages(std::size_t columns, std::size_t most) const {
    std::vector<TableLine> lines;
    for (auto message = kept.rbegin(); message != kept.rend() && lines.size() < most; ++message) {
        std::vector<TableLine> wrapped;
        for (const std::string& text :
             wrapText(clockText(message->timeMs) + "  " + message->text, columns, timeColumns))
            wrapped.push_back({Style::Bad, text});
        if (lines.empty())
            wrapped.resize(std::min(wrapped.size(), most));
        else if (lines.size() + wrapped.size() > most)
            break;
        lines.insert(lines.begin(), wrapped.begin(), wrapped.end());
    }
    return lines;
}

std::string TableView::titleText(qint64 nowMs) const {
    const std::string now = localTimeText(nowMs);
    std::string text = title + "  " + now.substr(0, 19) + now.substr(23);
    if (shown == Shown::Points && list.size() > 0)
        text += "  " + std::to_string(first + 1) + "-" +
                std::to_string(std::min(first + inView, list.size())) + " of " + std::to_string(list.size());
    if (!arrangement.rtu.empty())
        text += "  RTUs \"" + arrangement.rtu + "\"";
    if (arrangement.isNotGoodOnly)
        text += "  not good";
    if (arrangement.isByAge)
        text += "  by age";
    return text;
}

std::string TableView::lastRow() const {
    if (asked == Asked::Search)
        return "search: " + typed + "_";
    if (asked == Asked::Rtu)
        return "RTU: " + typed + "_";
    if (!notice.empty())
        return notice;
    if (shown != Shown::Points)
        return "Esc: back to the points";
    return "/ search  r RTU  b not good  a by age  l line  m messages  ? help  Ctrl-C end";
}

} // namespace host
