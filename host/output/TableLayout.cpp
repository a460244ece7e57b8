#include "TableLayout.h"

#include "ChannelText.h"
#include "ValueText.h"

#include <algorithm>

namespace host {

namespace {

using Style = TableLine::Style;

constexpr std::size_t addressColumns = 6;  // a letter and five digits
constexpr std::size_t valueColumns = 14;   // the longest float, -1.1754944e-38
constexpr std::size_t qualityColumns = 10; // "never read"
constexpr std::size_t ageColumns = 8;
constexpr std::size_t gap = 2;
constexpr std::size_t fixedColumns =
    gap + addressColumns + valueColumns + qualityColumns + ageColumns + 4 * gap;
constexpr std::size_t leastNameColumns = 8;
constexpr std::size_t mostMessageLines = 4;

bool isLaterByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; // of a character of several
}

std::size_t countCharacters(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !isLaterByte(byte); }));
}

std::string ageText(qint64 milliseconds) {
    const qint64 tenths = std::max<qint64>(0, milliseconds) / 100;
    if (tenths < 600)
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
    if (tenths < 36'000)
        return std::to_string(tenths / 600) + " m " + std::to_string(tenths / 10 % 60) + " s";
    return std::to_string(tenths / 36'000) + " h " + std::to_string(tenths / 600 % 60) + " m";
}

Style styleOf(PointQuality quality) {
    return quality == PointQuality::Good  ? Style::Plain
           : quality == PointQuality::Bad ? Style::Bad
                                          : Style::Dim;
}

class TableBuilder {
public:
    TableBuilder(const TableContents& tableContents, const terminal::Size& terminalSize)
        : contents(tableContents), columns(terminalSize.columns) {
        std::size_t longestName = leastNameColumns;
        for (const PointRef& ref : *contents.points)
            longestName = std::max(longestName, countCharacters(ref.point->name));
        const std::size_t room = columns > fixedColumns ? columns - fixedColumns : 0;
        nameColumns = std::max(leastNameColumns, std::min(longestName, room));
    }

    // The points cut into pages of `rows` lines.
    std::vector<std::vector<TableLine>> pages(std::size_t rows) const {
        std::vector<std::vector<TableLine>> result(1);
        for (std::size_t i = 0; i < contents.points->size(); ++i) {
            const PointRef& ref = (*contents.points)[i];
            std::vector<TableLine> headings = headingsBefore(i, result.back().empty());
            if (!result.back().empty() && result.back().size() + headings.size() + 1 > rows) {
                result.emplace_back();
                headings = headingsBefore(i, true);
            }
            std::vector<TableLine>& page = result.back();
            page.insert(page.end(), headings.begin(), headings.end());
            page.push_back(pointLine(ref, contents.states[i]));
        }
        return result;
    }

    TableLine line(Style style, const std::string& text) const {
        const std::string fitted = fitText(text, std::min<std::size_t>(columns, countCharacters(text)));
        return {style, fitted};
    }

private:
    std::vector<TableLine> headingsBefore(std::size_t index, bool atPageTop) const {
        const PointRef& ref = (*contents.points)[index];
        const PointRef before = index > 0 ? (*contents.points)[index - 1] : PointRef();
        std::vector<TableLine> headings;
        if (atPageTop || ref.channel != before.channel)
            headings.push_back(line(Style::Heading, channelHeading(*ref.channel)));
        if (atPageTop || ref.rtu != before.rtu)
            headings.push_back(line(Style::Heading, rtuHeading(*ref.rtu)));
        return headings;
    }

    std::string channelHeading(const Channel& channel) const {
        ChannelFigures figures{&channel, {}};
        for (const ChannelFigures& one : contents.figures.channels)
            if (one.channel == &channel)
                figures = one;
        return channel.name + "  " + toText(channel.type) + "  " + endInUseText(figures) +
               troubleText(figures.status);
    }

    std::string rtuHeading(const Rtu& rtu) const {
        std::string text = " " + rtu.name + "  station " + std::to_string(rtu.station);
        if (!rtu.enabled)
            return text + "  disabled";
        const auto figures = std::find_if(contents.figures.rtus.begin(), contents.figures.rtus.end(),
                                          [&rtu](const RtuFigures& one) { return one.rtu == &rtu; });
        if (figures == contents.figures.rtus.end())
            return text;
        const RtuStatus& status = figures->status;
        return text + (status.connected ? "  connected" : "  NOT CONNECTED") + "  " +
               std::to_string(status.answers) + " answers  " + std::to_string(status.timeOuts) +
               " time-outs  " + std::to_string(status.errors) + " errors  " +
               millisecondsText(status.lastRoundTrip);
    }

    TableLine pointLine(const PointRef& ref, const PointState& state) const {
        const std::string between(gap, ' ');
        const bool hasValue = state.valueTimeMs != 0;
        return line(
            styleOf(state.quality),
            between + fitText(ref.point->name, nameColumns) + between +
                fitText(toText(ref.point->address), addressColumns) + between +
                fitText(hasValue ? valueText(*ref.point, state.value) : "-", valueColumns, true) + between +
                fitText(toText(state.quality), qualityColumns) + between +
                fitText(hasValue ? ageText(contents.nowMs - state.valueTimeMs) : "", ageColumns, true));
    }

    const TableContents& contents;
    const std::size_t columns;
    std::size_t nameColumns = leastNameColumns;
};

} // namespace

std::string fitText(const std::string& text, std::size_t columns, bool rightAligned) {
    std::string fitted;
    std::size_t used = 0;
    for (const char byte : text) {
        if (!isLaterByte(byte) && ++used > columns)
            break;
        const auto code = static_cast<unsigned char>(byte);
        fitted += code < 0x20 || code == 0x7F ? '?' : byte;
    }
    const std::string filling(used < columns ? columns - used : 0, ' ');
    return rightAligned ? filling + fitted : fitted + filling;
}

TablePage layOutTable(const TableContents& contents, const terminal::Size& size, std::size_t page) {
    const TableBuilder builder(contents, size);
    const std::size_t rows = std::max(4U, size.rows); // below, nothing sensible can be shown
    const std::size_t messageLines = std::min({contents.messages.size(), mostMessageLines, rows / 6});
    const auto pages = builder.pages(rows - 1 - messageLines);

    TablePage result;
    result.pageCount = pages.size();
    const std::size_t shown = page % pages.size();
    std::string title = contents.title + "  " + localTimeText(contents.nowMs).substr(0, 19);
    if (pages.size() > 1)
        title += "  page " + std::to_string(shown + 1) + " of " + std::to_string(pages.size());
    result.lines.push_back(builder.line(Style::Dim, title));
    result.lines.insert(result.lines.end(), pages[shown].begin(), pages[shown].end());
    for (std::size_t i = contents.messages.size() - messageLines; i < contents.messages.size(); ++i)
        result.lines.push_back(builder.line(Style::Bad, contents.messages[i]));
    return result;
}

} // namespace host
