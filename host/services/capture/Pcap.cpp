#include "Pcap.h"

#include "BigEndian.h"

namespace host {

namespace {

constexpr std::size_t ipHeaderSize = 20;
constexpr std::size_t udpHeaderSize = 8;
constexpr unsigned udpProtocol = 17;

// The sum of all 16-bit words with its carries added in, as IP and UDP have it; an odd last byte counts as if
// a 0 followed.
unsigned onesComplementSum(const TelegramBytes& bytes, std::uint64_t start = 0) {
    std::uint64_t sum = start;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        sum += i % 2 == 0 ? static_cast<unsigned>(bytes[i]) << 8 : bytes[i];
    while (sum > 0xFFFF)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<unsigned>(sum);
}

unsigned inverted(unsigned sum) {
    return ~sum & 0xFFFF;
}

void put16(TelegramBytes& bytes, std::size_t place, unsigned value) {
    bytes[place] = static_cast<std::uint8_t>(value >> 8);
    bytes[place + 1] = static_cast<std::uint8_t>(value);
}

TelegramBytes ipHeader(const Datagram& datagram) {
    constexpr unsigned version4WithFiveWords = 0x4500; // and no special service
    constexpr unsigned identification = 0;             // nothing is in fragments
    constexpr unsigned doNotFragment = 0x4000;
    constexpr unsigned timeToLive = 64;
    constexpr std::size_t checksumPlace = 10;
    TelegramBytes header;
    append16(header, version4WithFiveWords);
    append16(header, static_cast<unsigned>(ipHeaderSize + udpHeaderSize + datagram.payload.size()));
    append16(header, identification);
    append16(header, doNotFragment);
    append16(header, timeToLive << 8 | udpProtocol);
    append16(header, 0);
    append32(header, datagram.from.address);
    append32(header, datagram.to.address);
    put16(header, checksumPlace, inverted(onesComplementSum(header)));
    return header;
}

// UDP's checksum covers the addresses, the protocol and the length beside its own bytes.
unsigned udpChecksum(const Datagram& datagram, const TelegramBytes& udp) {
    TelegramBytes alsoCovered;
    append32(alsoCovered, datagram.from.address);
    append32(alsoCovered, datagram.to.address);
    append16(alsoCovered, udpProtocol);
    append16(alsoCovered, static_cast<unsigned>(udp.size()));
    const unsigned checksum = inverted(onesComplementSum(udp, onesComplementSum(alsoCovered)));
    return checksum == 0 ? 0xFFFF : checksum; // 0 would say that there is none
}

TelegramBytes udpDatagram(const Datagram& datagram) {
    constexpr std::size_t checksumPlace = 6;
    TelegramBytes udp;
    append16(udp, datagram.from.port);
    append16(udp, datagram.to.port);
    append16(udp, static_cast<unsigned>(udpHeaderSize + datagram.payload.size()));
    append16(udp, 0);
    udp.insert(udp.end(), datagram.payload.begin(), datagram.payload.end());
    put16(udp, checksumPlace, udpChecksum(datagram, udp));
    return udp;
}

void append(TelegramBytes& bytes, const TelegramBytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

} // namespace

TelegramBytes pcapHeader() {
    constexpr std::uint32_t magic = 0xA1B2C3D4; // tells the byte order of all that follows, and microseconds
    constexpr unsigned majorVersion = 2;
    constexpr unsigned minorVersion = 4;
    constexpr std::uint32_t timeZone = 0; // times are UTC
    constexpr std::uint32_t timeAccuracy = 0;
    constexpr std::uint32_t longestPacket = 65'535;
    constexpr std::uint32_t rawIp = 101;
    TelegramBytes header;
    append32(header, magic);
    append16(header, majorVersion);
    append16(header, minorVersion);
    append32(header, timeZone);
    append32(header, timeAccuracy);
    append32(header, longestPacket);
    append32(header, rawIp);
    return header;
}

TelegramBytes pcapRecord(const Datagram& datagram) {
    using namespace std::chrono;
    const auto sinceEpoch = datagram.time.time_since_epoch();
    const auto wholeSeconds = floor<seconds>(sinceEpoch);
    const auto rest = floor<microseconds>(sinceEpoch - wholeSeconds);
    const auto size = static_cast<std::uint32_t>(ipHeaderSize + udpHeaderSize + datagram.payload.size());
    TelegramBytes record;
    append32(record, static_cast<std::uint32_t>(wholeSeconds.count()));
    append32(record, static_cast<std::uint32_t>(rest.count()));
    append32(record, size); // kept
    append32(record, size); // on the line
    append(record, ipHeader(datagram));
    append(record, udpDatagram(datagram));
    return record;
}

} // namespace host
