#include "Loopback.h"

#include <LoopbackNames.h>

#include <filesystem>

namespace host {

LinkEnd onLoopback(const LinkEnd& end, const std::string& folder) {
    if (const UdpEnd* const udp = std::get_if<UdpEnd>(&end))
        return UdpEnd{text::loopbackHost(udp->host), udp->port};
    SerialEnd serial = std::get<SerialEnd>(end);
    serial.device = text::loopbackDevice(serial.device, folder);
    return serial;
}

void moveToLoopback(Site& site, const std::string& folder) {
    for (Channel& channel : site.channels) {
        channel.primary = onLoopback(channel.primary, folder);
        if (channel.secondary)
            channel.secondary = onLoopback(*channel.secondary, folder);
    }
}

std::string loopbackFolderOf(const std::string& siteFile) {
    return std::filesystem::absolute(std::filesystem::u8path(siteFile)).parent_path().u8string();
}

} // namespace host
