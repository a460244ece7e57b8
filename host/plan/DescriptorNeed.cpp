#include "DescriptorNeed.h"

namespace host {

namespace {

// The standard streams, the program's own events, the plug-in and a file being read; some to spare.
constexpr std::size_t ofProgram = 24;
// A socket or device, and three with which its waits are made.
constexpr std::size_t ofEnd = 4;
// The waits of its own that a look-up of a host name has, a socket, and files of the system's settings. They
// are closed again with the answer, but all lines look at once at the start.
constexpr std::size_t ofNameLookUp = 6;
constexpr std::size_t ofCapture = 2; // the file, and the next one
constexpr std::size_t ofModbus =
    5;                            // its socket, what its thread waits with, and a client that is turned away
constexpr std::size_t ofHttp = 5; // its thread's waits, the socket, and a client that is turned away
constexpr std::size_t ofControl = 5; // its thread, its lock, the socket, and what asks whether it is taken
// The connection, two of the library's, the store with its log and lock, and a file of a certificate.
constexpr std::size_t ofMqtt = 8 + ofNameLookUp;

bool isName(const std::string& host) {
    return host.find_first_not_of("0123456789.") != std::string::npos && host.find(':') == std::string::npos;
}

std::size_t neededBy(const LinkEnd& end) {
    const auto* const udp = std::get_if<UdpEnd>(&end);
    return ofEnd + (udp != nullptr && isName(udp->host) ? ofNameLookUp : 0);
}

} // namespace

std::size_t descriptorsNeeded(const Site& site, const BesideLines& beside) {
    std::size_t needed = ofProgram;
    for (const Channel& channel : site.channels)
        needed += neededBy(channel.primary) + (channel.secondary ? neededBy(*channel.secondary) : 0) +
                  (beside.hasLogFiles ? 1 : 0);
    needed += beside.hasCapture ? ofCapture : 0;
    needed += site.http ? ofHttp + mostHttpClients : 0;
    needed += beside.hasControl ? ofControl + leastControlClients : 0;
    needed += site.modbus ? ofModbus + mostModbusClients : 0;
    needed += site.mqtt ? ofMqtt : 0;
    return needed;
}

} // namespace host
