#include "MqttSettings.h"

#include "ListenAddress.h"

#include <charconv>

namespace host {

namespace {

constexpr std::uint16_t plainPort = 1883;
constexpr std::uint16_t securePort = 8883;

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

std::optional<std::uint16_t> parsePort(const std::string& text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || rest != end || port == 0)
        return std::nullopt;
    return port;
}

bool isHost(const std::string& text) {
    return !text.empty() && text.find_first_of("/@?#[] \t") == std::string::npos;
}

} // namespace

bool BrokerUrl::isLoopback() const {
    return host == "localhost" || ListenAddress{host, port, {}}.isLoopback();
}

std::string toText(const BrokerUrl& url) {
    const bool isV6 = url.host.find(':') != std::string::npos;
    return (url.isSecure ? "mqtts://" : "mqtt://") + (isV6 ? "[" + url.host + "]" : url.host) + ":" +
           std::to_string(url.port);
}

std::optional<BrokerUrl> parseBrokerUrl(const std::string& text) {
    const std::string scheme = startsWith(text, "mqtts://") ? "mqtts://" : "mqtt://";
    if (!startsWith(text, scheme))
        return std::nullopt;
    BrokerUrl url;
    url.isSecure = scheme == "mqtts://";
    url.port = url.isSecure ? securePort : plainPort;
    std::string rest = text.substr(scheme.size());
    if (!rest.empty() && rest.back() == '/')
        rest.pop_back();
    const bool isBracketed = startsWith(rest, "[") && rest.find(']') != std::string::npos;
    const std::size_t hostEnd = isBracketed ? rest.find(']') + 1 : rest.find(':');
    url.host = isBracketed ? rest.substr(1, hostEnd - 2) : rest.substr(0, hostEnd);
    if (!isHost(url.host) || isBracketed != (url.host.find(':') != std::string::npos))
        return std::nullopt;
    if (hostEnd == std::string::npos || hostEnd == rest.size())
        return url;
    const std::optional<std::uint16_t> port =
        rest[hostEnd] == ':' ? parsePort(rest.substr(hostEnd + 1)) : std::nullopt;
    if (!port)
        return std::nullopt;
    url.port = *port;
    return url;
}

} // namespace host
