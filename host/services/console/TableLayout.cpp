#include "TableLayout.h"

#include "runtime/ChannelText.h"
#include "site/CountText.h"
#include "site/PointValue.h"
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
constexpr std::size_t mostUnitColumns = 8;

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

// A description that is cut off short tells nothing.
std::string descriptionText(const Point& point, std::size_t columns) {
    constexpr std::size_t leastColumns = 16;
    return point.description && columns >= leastColumns + gap
               ? std::string(gap, ' ') + cutText(*point.description, columns - gap)
               : std::string();
}

// The bytes of the first `characters` of `text` from `start` on.
std::size_t bytesOf(const std::string& text, std::size_t start, std::size_t characters) {
    std::size_t end = start;
    while (end < text.size() && (isLaterByte(text[end]) || characters-- > 0))
        ++end;
    return end - start;
}

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

std::string cutText(const std::string& text, std::size_t columns) {
    return fitText(text, std::min(columns, countCharacters(text)));
}

std::vector<std::string> wrapText(const std::string& text, std::size_t columns, std::size_t indent) {
    const std::size_t room = std::max<std::size_t>(1, columns);
    const std::size_t indented = indent < room ? indent : 0;
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size() || lines.empty();) {
        const std::size_t before = lines.empty() ? 0 : indented;
        std::size_t length = bytesOf(text, start, room - before);
        if (start + length < text.size()) {
            const std::size_t blank = text.rfind(' ', start + length);
            if (blank != std::string::npos && blank > start)
                length = blank - start;
        }
        lines.push_back(fitText(std::string(before, ' ') + text.substr(start, length),
                                before + countCharacters(text.substr(start, length))));
        start += length;
        while (start < text.size() && text[start] == ' ')
            ++start;
        if (text.empty())
            break;
    }
    return lines;
}

std::string channelHeading(const ChannelFigures& figures) {
    const Channel& channel = *figures.channel;
    return channel.name + "  " + toText(channel.type) + "  " + endInUseText(figures) +
           troubleText(figures.status);
}

std::string rtuHeading(const Rtu& rtu, const RtuFigures* figures) {
    std::string text = " " + rtu.name + "  station " + std::to_string(rtu.station);
    if (!rtu.enabled)
        return text + "  disabled";
    if (figures == nullptr)
        return text;
    const RtuStatus& status = figures->status;
    return text + (status.connected ? "  connected" : "  NOT CONNECTED") + "  " +
           countText(status.answers, "answer") + "  " + countText(status.timeOuts, "time-out") + "  " +
           countText(status.errors, "error") + "  " + millisecondsText(status.lastRoundTrip);
}

std::string channelHealth(const ChannelStatus& status) {
    return std::string(status.connected ? "open" : "NOT OPEN") + "  " +
           countText(status.failedOpens, "failed open") + "  " +
           countText(status.channelErrors, "channel error") + "  " + countText(status.linkChanges, "change") +
           " of ends  " + countText(status.scanOverruns, "scan overrun") + "  without a connection for " +
           ageText(static_cast<qint64>(status.failedMs)) + " in all";
}

PointColumns::PointColumns(const PointTable& pointTable, bool withRtu) : hasRtu(withRtu) {
    for (const PointTable::Block& block : pointTable.blocks()) {
        const std::size_t before = withRtu ? countCharacters(block.rtu->name) + 1 : 0;
        for (const Point& point : block.rtu->points) {
            longestName = std::max(longestName, before + countCharacters(point.name));
            unitColumns = std::max(unitColumns, countCharacters(unitOf(point)));
        }
    }
    unitColumns = std::min(unitColumns, mostUnitColumns);
}

// Of a table without units it takes no room.
std::string PointColumns::unitText(const Point& point) const {
    return unitColumns == 0 ? std::string() : " " + fitText(unitOf(point), unitColumns);
}

TableLine PointColumns::line(const PointRef& ref, const PointState& state, qint64 nowMs,
                             std::size_t columns) const {
    const std::size_t taken = fixedColumns + (unitColumns == 0 ? 0 : unitColumns + 1);
    const std::size_t room = columns > taken ? columns - taken : 0;
    const std::size_t nameColumns = std::max(leastNameColumns, std::min(longestName, room));
    const std::string name = (hasRtu ? ref.rtu->name + '/' : "") + ref.point->name;
    const std::string between(gap, ' ');
    return {
        styleOf(state.quality),
        cutText(between + fitText(name, nameColumns) + between +
                    fitText(toText(ref.point->address), addressColumns) + between +
                    fitText(state.hasValue() ? valueText(*ref.point, state.value) : "-", valueColumns, true) +
                    unitText(*ref.point) + between + fitText(toText(state.quality), qualityColumns) +
                    between +
                    fitText(state.hasValue() ? ageText(nowMs - state.valueTimeMs) : "", ageColumns, true) +
                    descriptionText(*ref.point, room - std::min(room, nameColumns)),
                columns),
        false};
}

} // namespace host
