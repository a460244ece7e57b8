#pragma once

#include "Finding.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

class TomlTable;

// Where a service takes connections: "127.0.0.1:1502", "[::1]:1502".
struct ListenAddress {
    std::string host; // an IPv4 or IPv6 address in numbers, without brackets
    std::uint16_t port = 0;
    Place place; // in the site file

    // Whether this computer alone can connect.
    bool isLoopback() const;
};

std::string toText(const ListenAddress& address);

// Nothing for a text that names no address, or a port that is none. Port 0 stands for any free one.
std::optional<ListenAddress> parseListenAddress(const std::string& text);

// Reads the key "listen" of a service's table, which has to be there; what is wrong with it is told.
// `example` is an address to propose: "127.0.0.1:1502".
std::optional<ListenAddress> readListenAddress(TomlTable& table, const std::string& example,
                                               Findings& findings);

} // namespace host
