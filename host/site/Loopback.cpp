#include "Loopback.h"

#include "Number.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace host {

namespace {

using Octets = std::array<unsigned, 4>;

std::optional<Octets> ipv4Of(const std::string& host) {
    Octets octets{};
    std::size_t start = 0;
    for (std::size_t i = 0; i < octets.size(); ++i) {
        const std::size_t end = i + 1 < octets.size() ? host.find('.', start) : host.size();
        if (end == std::string::npos)
            return std::nullopt;
        const std::optional<unsigned> octet = parseNumber(host.substr(start, end - start), 0, 255);
        if (!octet)
            return std::nullopt;
        octets[i] = *octet;
        start = end + 1;
    }
    return octets;
}

// FNV-1a, which the simulator's side uses as well.
std::uint32_t numberOf(const std::string& text) {
    std::uint32_t number = 2166136261U;
    for (const char character : text)
        number = (number ^ static_cast<unsigned char>(character)) * 16777619U;
    return number;
}

std::string loopbackAddress(unsigned second, unsigned third, unsigned fourth) {
    return "127." + std::to_string(second) + '.' + std::to_string(third) + '.' + std::to_string(fourth);
}

std::string loopbackHost(const std::string& host) {
    const std::optional<Octets> octets = ipv4Of(host);
    if (host == "localhost" || host == "::1" || (octets && octets->front() == 127))
        return host;
    if (octets)
        return loopbackAddress((*octets)[1], (*octets)[2], (*octets)[3]);
    const std::uint32_t number = numberOf(host);
    return loopbackAddress(number >> 8 & 0xFF, number >> 16 & 0xFF, 1 + (number & 0xFF) % 254);
}

std::string loopbackDevice(const std::string& device, const std::string& folder) {
    std::string name = device.substr(std::min(device.find_first_not_of('/'), device.size()));
    std::replace(name.begin(), name.end(), '/', '-');
    return folder + "/loopback-" + name;
}

} // namespace

LinkEnd onLoopback(const LinkEnd& end, const std::string& folder) {
    if (const UdpEnd* const udp = std::get_if<UdpEnd>(&end))
        return UdpEnd{loopbackHost(udp->host), udp->port};
    SerialEnd serial = std::get<SerialEnd>(end);
    serial.device = loopbackDevice(serial.device, folder);
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
