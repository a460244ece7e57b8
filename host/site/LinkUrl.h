#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host {

struct UdpEnd {
    std::string host;
    unsigned port = 5050; // where controllers listen unless they were told otherwise
};

struct SerialEnd {
    enum class Parity { None, Even, Odd };
    std::string device;
    unsigned baud = 9600;
    Parity parity = Parity::None;
    unsigned stopBits = 1;
    unsigned dataBits = 8; // telegrams are made of bytes: nothing else will do
};

using LinkEnd = std::variant<UdpEnd, SerialEnd>;

struct LinkFault {
    std::string what;
    std::string remedy;
};

struct ParsedLink {
    std::optional<LinkEnd> end;    // none when there is a fault
    std::vector<LinkFault> faults; // all of them
};
// "udp://host:port", "udp://[2001:db8::5]:5050", "serial:/dev/ttyUSB0?baud=19200&parity=none&stop=1&data=8"
ParsedLink parseLinkUrl(const std::string& url);

std::string toText(const LinkEnd& end);

} // namespace host
