#include "Loopback.h"

#include <algorithm>

#include <asio/ip/address.hpp>

namespace sim {

namespace {

// FNV-1a, which the host's side uses as well.
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
    asio::error_code error;
    const asio::ip::address address = asio::ip::make_address(host, error);
    if (host == "localhost" || (!error && address.is_loopback()))
        return host;
    if (!error && address.is_v4()) {
        const auto bytes = address.to_v4().to_bytes();
        return loopbackAddress(bytes[1], bytes[2], bytes[3]);
    }
    const std::uint32_t number = numberOf(host);
    return loopbackAddress(number >> 8 & 0xFF, number >> 16 & 0xFF, 1 + (number & 0xFF) % 254);
}

} // namespace

EndPoint onLoopback(EndPoint end, const std::string& folder) {
    if (end.kind == EndPoint::Kind::Udp) {
        end.host = loopbackHost(end.host);
        return end;
    }
    std::string name = end.path.substr(std::min(end.path.find_first_not_of('/'), end.path.size()));
    std::replace(name.begin(), name.end(), '/', '-');
    end.path = folder + "/loopback-" + name;
    return end;
}

Site onLoopback(Site site, const std::string& folder) {
    for (LineSite& line : site.lines) {
        line.primary = onLoopback(line.primary, folder);
        if (line.secondary)
            line.secondary = onLoopback(*line.secondary, folder);
    }
    return site;
}

} // namespace sim
