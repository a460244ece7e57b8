#pragma once

#include "Pcap.h"

#include <map>

namespace host {

// How an exchange looks in a capture: UDP datagrams between the host, 10.0.0.1, and the controller at
// 10.<channel>.<end>.<station>, end 1 being the primary and 2 the secondary one. Controllers have port 5050,
// which S-Bus has by custom and by which Wireshark finds its decoder. Channels from 256 on begin again at 0
// with an end higher by 2, so that 10.1.3.5 is station 5 at the primary end of channel 257.
Ipv4End controllerEnd(int channelId, bool onSecondary, unsigned station);
Ipv4End hostEnd();

// How many datagrams an exchange becomes.
std::size_t countDatagrams(const Exchange& exchange);

// Makes datagrams of exchanges, one after the other. One thread at a time.
//
// What came and was thrown away unread stands before the request, what was received stands behind it at the
// time of its last byte. Ethernet telegrams go in as they are. Serial ones take the form that they would have
// over Ethernet (EthernetForm.h), with a sequence number that counts on from 0 for each channel. What has no
// such form, or is damaged, or does not belong to its request goes in as the bytes that it was.
class CapturedDatagrams {
public:
    std::vector<Datagram> make(const Exchange& exchange);

private:
    std::map<int, std::uint16_t> nextSequences; // by channel
};

} // namespace host
