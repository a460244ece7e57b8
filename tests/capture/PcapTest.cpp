#include "services/capture/Pcap.h"

#include "Exchanges.h"

#include <gtest/gtest.h>

using host::Datagram;
using host::pcapRecord;
using host::TelegramBytes;

namespace {

// From 10.0.0.1, port 49152, to 10.1.1.5, port 5050.
Datagram datagramWith(const TelegramBytes& payload) {
    return {{}, {0x0A000001, 49152}, {0x0A010105, 5050}, payload};
}

std::string part(const TelegramBytes& bytes, std::size_t start, std::size_t size) {
    const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(start);
    return text({from, from + static_cast<std::ptrdiff_t>(size)});
}

} // namespace

TEST(Pcap, HeaderTellsMicrosecondsAndRawIp) {
    EXPECT_EQ(text(host::pcapHeader()), "A1 B2 C3 D4 00 02 00 04 00 00 00 00 00 00 00 00 00 00 FF FF "
                                        "00 00 00 65");
}

TEST(Pcap, RecordHoldsTimeSizeIpUdpAndPayload) {
    Datagram datagram = datagramWith(bytes("01 02 03 04 05"));
    datagram.time += std::chrono::seconds(1'795'000'000) + std::chrono::microseconds(123'456);
    EXPECT_EQ(text(pcapRecord(datagram)), "6A FD 86 C0 00 01 E2 40 00 00 00 21 00 00 00 21 "
                                          "45 00 00 21 00 00 40 00 40 11 25 C6 0A 00 00 01 0A 01 01 05 "
                                          "C0 00 13 BA 00 0D 0E 0D "
                                          "01 02 03 04 05");
}

// 0 would say that there is no checksum.
TEST(Pcap, UdpChecksumOf0IsWrittenAsAllOnes) {
    EXPECT_EQ(part(pcapRecord(datagramWith(bytes("17 19"))), 16 + 20 + 6, 2), "FF FF");
}

TEST(Pcap, CutsTimesToMicroseconds) {
    Datagram datagram = datagramWith(bytes("01"));
    datagram.time += std::chrono::seconds(1) + std::chrono::nanoseconds(999'999'999);
    EXPECT_EQ(part(pcapRecord(datagram), 0, 8), "00 00 00 01 00 0F 42 3F");
}

TEST(Pcap, LargestPayloadMakesTheLargestPacket) {
    const TelegramBytes record = pcapRecord(datagramWith(TelegramBytes(host::largestPayload, 0xFF)));
    EXPECT_EQ(record.size(), 16U + 65'535U);
    EXPECT_EQ(part(record, 8, 8), "00 00 FF FF 00 00 FF FF");
    EXPECT_EQ(part(record, 16 + 2, 2), "FF FF");
    EXPECT_EQ(part(record, 16 + 20 + 4, 2), "FF EB");
}
