#include "ChannelText.h"

#include "site/CountText.h"

namespace host {

std::string endInUseText(const ChannelFigures& figures) {
    const Channel& channel = *figures.channel;
    const bool isSecondary = figures.status.whereLink == 1 && channel.secondary;
    return isSecondary ? toText(*channel.secondary) + "  secondary" : toText(channel.primary);
}

std::string troubleText(const ChannelStatus& status) {
    const std::pair<quint64, const char*> figures[] = {{status.failedOpens, "failed open"},
                                                       {status.channelErrors, "channel error"},
                                                       {status.scanOverruns, "scan overrun"}};
    std::string text;
    for (const auto& [count, name] : figures)
        if (count > 0)
            text += "  " + countText(count, name);
    return text;
}

} // namespace host
