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

bool isPolled(const Rtu& rtu) {
    return rtu.enabled && !rtu.points.empty();
}

bool hasBeenTried(const ChannelFigures& line, const std::vector<RtuFigures>& rtus) {
    const std::vector<Rtu>& configured = line.channel->rtus;
    if (line.status.failedOpens > 0)
        return true;
    if (std::none_of(configured.begin(), configured.end(), isPolled))
        return line.status.connected;
    return std::any_of(rtus.begin(), rtus.end(), [&line](const RtuFigures& one) {
        return one.channel == line.channel && one.status.requests > 0;
    });
}

} // namespace

bool LineWatch::haveAllBeenTried(const SiteFigures& figures) {
    return std::all_of(figures.channels.begin(), figures.channels.end(),
                       [&figures](const ChannelFigures& line) { return hasBeenTried(line, figures.rtus); });
}

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
