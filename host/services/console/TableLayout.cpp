#include "TableLayout.h"

#include "runtime/ChannelText.h"
#include "values/ValueText.h"

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
    switch (quality) {
    case PointQuality::Good:
        return Style::Plain;
    case PointQuality::Bad:
    case PointQuality::Refused:
        return Style::Bad;
    case PointQuality::NeverRead:
        break;
    }
    return Style::Dim;
}

class TableBuilder {
public:
    TableBuilder(const TableContents& tableContents, const terminal::Size& terminalSize)
        : contents(tableContents), points(contents.values->points()), columns(terminalSize.columns) {
        const std::size_t room = columns > fixedColumns ? columns - fixedColumns : 0;
        nameColumns = std::max(leastNameColumns, std::min(contents.longestName, room));
    }

    // The first point of each page of `rows` lines. There is one page even without points.
    std::vector<std::size_t> pageStarts(std::size_t rows) const {
        std::vector<std::size_t> starts{0};
        std::size_t used = 0;
        for (const PointTable::Block& block : points.blocks()) {
            std::size_t next = block.first;
            while (next < block.end()) {
                const std::size_t headings = headingsBefore(next, used == 0).count();
                if (used > 0 && used + headings + 1 > rows) {
                    starts.push_back(next);
                    used = 0;
                    continue;
                }
                const std::size_t room = rows > used + headings ? rows - used - headings : 1;
                const std::size_t fitting = std::min(room, block.end() - next);
                used += headings + fitting;
                next += fitting;
            }
        }
        return starts;
    }

    // The points from `first` to before `end`, under their headings.
    std::vector<TableLine> pageLines(std::size_t first, std::size_t end) const {
        std::vector<TableLine> lines;
        std::vector<PointState> states;
        contents.values->copyStates(static_cast<PointIndex>(first), end - first, states);
        for (std::size_t i = first; i < first + states.size(); ++i) {
            const PointRef ref = points.at(static_cast<PointIndex>(i));
            const Headings headings = headingsBefore(i, i == first);
            if (headings.ofChannel)
                lines.push_back(line(Style::Heading, channelHeading(*ref.channel)));
            if (headings.ofRtu)
                lines.push_back(line(Style::Heading, rtuHeading(*ref.rtu)));
            lines.push_back(pointLine(ref, states[i - first]));
        }
        return lines;
    }

    TableLine line(Style style, const std::string& text) const {
        const std::string fitted = fitText(text, std::min<std::size_t>(columns, countCharacters(text)));
        return {style, fitted};
    }

private:
    struct Headings {
        bool ofChannel;
        bool ofRtu;

        std::size_t count() const { return (ofChannel ? 1U : 0U) + (ofRtu ? 1U : 0U); }
    };

    Headings headingsBefore(std::size_t index, bool atPageTop) const {
        const PointRef ref = points.at(static_cast<PointIndex>(index));
        const PointRef before = index > 0 ? points.at(static_cast<PointIndex>(index - 1)) : PointRef();
        return {atPageTop || ref.channel != before.channel, atPageTop || ref.rtu != before.rtu};
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
        return line(
            styleOf(state.quality),
            between + fitText(ref.point->name, nameColumns) + between +
                fitText(toText(ref.point->address), addressColumns) + between +
                fitText(state.hasValue() ? valueText(*ref.point, state.value) : "-", valueColumns, true) +
                between + fitText(toText(state.quality), qualityColumns) + between +
                fitText(state.hasValue() ? ageText(contents.nowMs - state.valueTimeMs) : "", ageColumns,
                        true));
    }

    const TableContents& contents;
    const PointTable& points;
    const std::size_t columns;
    std::size_t nameColumns = leastNameColumns;
};

} // namespace

std::size_t longestNameOf(const PointTable& points) {
    std::size_t longest = 0;
    for (const PointTable::Block& block : points.blocks())
        for (const Point& point : block.rtu->points)
            longest = std::max(longest, countCharacters(point.name));
    return longest;
}

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
    const std::size_t messageLines = std::min({contents.messages.size(), mostTableMessages, rows / 6});
    const std::vector<std::size_t> starts = builder.pageStarts(rows - 1 - messageLines);

    TablePage result;
    result.pageCount = starts.size();
    const std::size_t shown = page % starts.size();
    const std::size_t end = shown + 1 < starts.size() ? starts[shown + 1] : contents.values->points().size();
    const std::vector<TableLine> lines = builder.pageLines(starts[shown], end);
    std::string title = contents.title + "  " + localTimeText(contents.nowMs).substr(0, 19);
    if (starts.size() > 1)
        title += "  page " + std::to_string(shown + 1) + " of " + std::to_string(starts.size());
    result.lines.push_back(builder.line(Style::Dim, title));
    result.lines.insert(result.lines.end(), lines.begin(), lines.end());
    for (std::size_t i = contents.messages.size() - messageLines; i < contents.messages.size(); ++i)
        result.lines.push_back(builder.line(Style::Bad, contents.messages[i]));
    return result;
}

} // namespace host
