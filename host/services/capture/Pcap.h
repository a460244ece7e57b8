#pragma once

#include "telegram/Exchange.h"

// The bytes of a capture file as Wireshark and tcpdump read it (pcap): a header, then a record for each
// packet. The packets are UDP over IPv4 without anything below (link type 101), their times count in
// microseconds.
namespace host {

struct Ipv4End {
    std::uint32_t address = 0;
    std::uint16_t port = 0;
};

struct Datagram {
    std::chrono::system_clock::time_point time;
    Ipv4End from;
    Ipv4End to;
    TelegramBytes payload; // no longer than largestPayload
};

// What an IPv4 packet, whose length has 16 bits, holds beside its header (20 bytes) and that of UDP (8
// bytes).
constexpr std::size_t largestPayload = 65'507;

TelegramBytes pcapHeader();
TelegramBytes pcapRecord(const Datagram& datagram);

} // namespace host
