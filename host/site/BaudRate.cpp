#include "BaudRate.h"

#include <asio/serial_port_base.hpp>

#include <array>

namespace host {

namespace {

// What systems know at most, in ascending order.
constexpr std::array<unsigned, 31> standardRates{
    50,     75,     110,     134,     150,     200,     300,     600,     1200,   1800,   2400,
    4800,   7200,   9600,    14400,   19200,   38400,   57600,   115200,  230400, 460800, 500000,
    576000, 921600, 1000000, 1152000, 1500000, 2000000, 3000000, 3500000, 4000000};

using Rate = asio::serial_port_base::baud_rate;

// Settings is the system's record of a device's settings: termios, or what another system has.
template <typename Result, typename Settings>
bool isTaken(Result (Rate::*store)(Settings&, asio::error_code&) const, unsigned baud) {
    Settings settings{};
    asio::error_code refusal;
    (Rate(baud).*store)(settings, refusal);
    return !refusal;
}

} // namespace

bool isKnownBaudRate(unsigned baud) {
    return baud > 0 && isTaken(&Rate::store, baud);
}

std::string nearestBaudRates(unsigned baud) {
    unsigned below = 0;
    unsigned above = 0;
    for (const unsigned rate : standardRates) {
        if (!isKnownBaudRate(rate))
            continue;
        if (rate < baud)
            below = rate;
        else if (above == 0)
            above = rate;
    }
    if (below == 0 || above == 0)
        return std::to_string(below + above);
    return std::to_string(below) + " and " + std::to_string(above);
}

} // namespace host
