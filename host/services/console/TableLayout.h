#pragma once

#include "runtime/HostRuntime.h"
#include "values/ValueStore.h"

#include <string>
#include <vector>

namespace host {

struct TableLine {
    enum class Style { Plain, Heading, Bad, Dim };
    Style style = Style::Plain;
    std::string text;
    bool isSelected = false;
};

// `text` in a field of `columns` characters, cut or filled with blanks. Counts characters, not bytes, and
// shows control characters as "?".
std::string fitText(const std::string& text, std::size_t columns, bool rightAligned = false);
// `text` without what goes beyond so many characters.
std::string cutText(const std::string& text, std::size_t columns);
// `text` in lines of at most so many characters, broken at blanks where there are some; those behind the
// first one begin with `indent` blanks.
std::vector<std::string> wrapText(const std::string& text, std::size_t columns, std::size_t indent);

// "waterworks  SBus-Ethernet  udp://127.0.0.1:5050  3 channel errors"
std::string channelHeading(const ChannelFigures& figures);
// " pump-house  station 5  connected  12 answers  0 time-outs  0 errors  0.03 ms"; `figures` may be null.
std::string rtuHeading(const Rtu& rtu, const RtuFigures* figures);
// What stands behind a channel's heading where it is looked at closer.
std::string channelHealth(const ChannelStatus& status);

// The columns of a table of points.
class PointColumns {
public:
    // `withRtu`: names have their RTU's in front. Looks at every name and unit.
    PointColumns(const PointTable& pointTable, bool withRtu);

    // The line of a point for a terminal of so many columns; with its description where there is room left.
    TableLine line(const PointRef& ref, const PointState& state, qint64 nowMs, std::size_t columns) const;

private:
    std::string unitText(const Point& point) const;

    const bool hasRtu;
    std::size_t longestName = 0;
    std::size_t unitColumns = 0;
};

} // namespace host
