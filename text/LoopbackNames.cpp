#include "LoopbackNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace text {

namespace {

using Octets = std::array<unsigned, 4>;

std::optional<Octets> ipv4Of(const std::string& host) {
    Octets octets{};
    const char* next = host.data();
    const char* const end = next + host.size();
    for (unsigned& octet : octets) {
        if (&octet != octets.data() && (next == end || *next++ != '.'))
            return std::nullopt;
        const auto [stop, error] = std::from_chars(next, end, octet);
        if (error != std::errc() || octet > 255)
            return std::nullopt;
        next = stop;
    }
    return next == end ? std::optional(octets) : std::nullopt;
}

// FNV-1a.
std::uint32_t numberOf(const std::string& text) {
    std::uint32_t number = 2166136261U;
    for (const char character : text)
        number = (number ^ static_cast<unsigned char>(character)) * 16777619U;
    return number;
}

std::string loopbackAddress(unsigned second, unsigned third, unsigned fourth) {
    return "127." + std::to_string(second) + '.' + std::to_string(third) + '.' + std::to_string(fourth);
}

} // namespace

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

} // namespace text
