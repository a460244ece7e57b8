#include "ListenAddress.h"

#include "TomlTable.h"

#include <asio/ip/address.hpp>

#include <charconv>

namespace host {

namespace {

std::optional<std::uint16_t> parsePort(const std::string& text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || rest != end)
        return std::nullopt;
    return port;
}

} // namespace

bool ListenAddress::isLoopback() const {
    asio::error_code error;
    const asio::ip::address address = asio::ip::make_address(host, error);
    return !error && address.is_loopback();
}

std::string toText(const ListenAddress& address) {
    const bool isV6 = address.host.find(':') != std::string::npos;
    return (isV6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

std::optional<ListenAddress> parseListenAddress(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        return std::nullopt;
    std::string host = text.substr(0, colon);
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (isBracketed)
        host = host.substr(1, host.size() - 2);
    const std::optional<std::uint16_t> port = parsePort(text.substr(colon + 1));
    asio::error_code error;
    const asio::ip::address address = asio::ip::make_address(host, error);
    if (error || !port || address.is_v6() != isBracketed)
        return std::nullopt;
    return ListenAddress{host, *port, {}};
}

std::optional<ListenAddress> readListenAddress(TomlTable& table, const std::string& example,
                                               Findings& findings) {
    const std::string remedy = "give an address in numbers and a port, such as \"" + example + "\"";
    table.need("listen", remedy);
    const std::optional<Field> field = table.text("listen", remedy);
    if (!field)
        return std::nullopt;
    std::optional<ListenAddress> address = parseListenAddress(field->text);
    if (address)
        address->place = field->place;
    else
        findings.error(field->place, "listen \"" + field->text + "\" is no address to listen on", remedy);
    return address;
}

} // namespace host
