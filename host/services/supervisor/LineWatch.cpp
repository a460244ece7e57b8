#include "LineWatch.h"

#include <QHostAddress>

#include <algorithm>

namespace host {

namespace {

// Three name servers are asked twice, five seconds each, for a name with and without the domain.
constexpr std::chrono::seconds longestLookUp{60};

bool needsLookUp(const LinkEnd& end) {
    const auto* const udp = std::get_if<UdpEnd>(&end);
    return udp != nullptr && QHostAddress(QString::fromStdString(udp->host)).isNull();
}

} // namespace

std::chrono::milliseconds LineWatch::longestWait(const Channel& channel) {
    std::chrono::milliseconds longest{0};
    for (const Rtu& rtu : channel.rtus)
        longest = std::max(longest, rtu.timeout + std::chrono::milliseconds(rtu.breakDelayMs));
    if (needsLookUp(channel.primary) || (channel.secondary && needsLookUp(*channel.secondary)))
        longest = std::max<std::chrono::milliseconds>(longest, longestLookUp);
    return longest;
}

std::vector<const Channel*> LineWatch::stuckLines(const SiteFigures& figures, Clock::time_point now) const {
    std::vector<const Channel*> stuck;
    for (const ChannelFigures& line : figures.channels)
        if (now - std::max(line.lastSign, start) > patienceWithThreads + longestWait(*line.channel))
            stuck.push_back(line.channel);
    return stuck;
}

} // namespace host
