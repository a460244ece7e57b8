#include "FirstPolls.h"

#include <algorithm>

namespace host {

namespace {

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

std::vector<const Channel*> linesBeforeFirstPoll(const SiteFigures& figures) {
    std::vector<const Channel*> lines;
    for (const ChannelFigures& line : figures.channels)
        if (!hasBeenTried(line, figures.rtus))
            lines.push_back(line.channel);
    return lines;
}

} // namespace host
