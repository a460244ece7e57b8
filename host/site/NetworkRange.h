#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Computers of a network: "10.0.0.0/8", "fd00::/8", or one alone: "192.168.10.5". Never changes.
class NetworkRange {
public:
    // Nothing for a text that is none.
    static std::optional<NetworkRange> parse(const std::string& text);

    // Whether the address is one of the range, in numbers. An IPv4 address that a socket of IPv6 tells
    // ("::ffff:10.0.0.1") is the IPv4 address.
    bool contains(const std::string& address) const;

private:
    using Bytes = std::array<std::uint8_t, 16>; // of an IPv6 address, or an IPv4 address mapped into one

    NetworkRange(const Bytes& firstAddress, unsigned commonBits) : first(firstAddress), bits(commonBits) {}
    static std::optional<Bytes> bytesOf(const std::string& address);

    Bytes first;
    unsigned bits; // that all of its addresses have in common, from the left
};

} // namespace host
