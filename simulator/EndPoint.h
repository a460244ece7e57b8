#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace sim {

enum class Parity { None, Even, Odd };

// What decides how long a byte takes on a serial line.
struct SerialSettings {
    unsigned baud = 9600;
    unsigned dataBits = 8;
    Parity parity = Parity::None;
    unsigned stopBits = 1;

    // Start bit, data bits, parity bit, stop bits.
    std::chrono::nanoseconds characterTime() const;
};

// Where the controllers of a line are reached.
struct EndPoint {
    enum class Kind { Udp, Serial };
    Kind kind = Kind::Udp;
    std::string host = "127.0.0.1"; // UDP: an address or name of this machine
    std::uint16_t port = 0;         // UDP; 0: any free one
    std::string path;               // serial: where the device is linked; empty: nowhere
    SerialSettings serial;
    std::string place; // file, line and key, to begin an error with; may be empty
};

// "udp://host:port" or "serial:/path?baud=19200&parity=none&stop=1". Otherwise false and `error` says why.
bool parseEndPoint(const std::string& text, EndPoint& endPoint, std::string& error);

} // namespace sim
