#include "NetworkRange.h"

#include "Number.h"

#include <asio/ip/address.hpp>

namespace host {

namespace {

constexpr unsigned bitsOfV4 = 32;
constexpr unsigned bitsOfV6 = 128;

} // namespace

std::optional<NetworkRange::Bytes> NetworkRange::bytesOf(const std::string& address) {
    asio::error_code error;
    const asio::ip::address parsed = asio::ip::make_address(address, error);
    if (error)
        return std::nullopt;
    return parsed.is_v6() ? parsed.to_v6().to_bytes()
                          : asio::ip::make_address_v6(asio::ip::v4_mapped, parsed.to_v4()).to_bytes();
}

std::optional<NetworkRange> NetworkRange::parse(const std::string& text) {
    const std::size_t slash = text.find('/');
    const std::string address = text.substr(0, slash);
    const std::optional<Bytes> bytes = bytesOf(address);
    const unsigned most = address.find(':') == std::string::npos ? bitsOfV4 : bitsOfV6;
    const std::optional<unsigned> length =
        slash == std::string::npos ? most : parseNumber(text.substr(slash + 1), 0, most);
    if (!bytes || !length)
        return std::nullopt;
    return NetworkRange(*bytes, bitsOfV6 - most + *length);
}

bool NetworkRange::contains(const std::string& address) const {
    const std::optional<Bytes> other = bytesOf(address);
    if (!other)
        return false;
    for (unsigned bit = 0; bit < bits; ++bit) {
        const unsigned mask = 0x80U >> bit % 8;
        if (((first[bit / 8] ^ (*other)[bit / 8]) & mask) != 0)
            return false;
    }
    return true;
}

} // namespace host
