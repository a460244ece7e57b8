#include "site/LinkUrl.h"

#include <gtest/gtest.h>

using host::parseLinkUrl;
using host::SerialEnd;
using host::UdpEnd;

namespace {

UdpEnd udp(const std::string& url) {
    return std::get<UdpEnd>(parseLinkUrl(url).end.value());
}

SerialEnd serial(const std::string& url) {
    return std::get<SerialEnd>(parseLinkUrl(url).end.value());
}

} // namespace

TEST(LinkUrl, NamesHostAndPort) {
    EXPECT_EQ(udp("udp://192.168.10.5:5051").host, "192.168.10.5");
    EXPECT_EQ(udp("udp://192.168.10.5:5051").port, 5051U);
    EXPECT_EQ(udp("udp://pump-house").host, "pump-house");
    EXPECT_EQ(udp("udp://pump-house").port, 5050U);
    EXPECT_EQ(udp("udp://[2001:db8::5]:5052").host, "2001:db8::5");
    EXPECT_EQ(udp("udp://[2001:db8::5]:5052").port, 5052U);
}

TEST(LinkUrl, NamesDeviceAndSettings) {
    const SerialEnd end = serial("serial:/dev/ttyUSB0?baud=19200&parity=even&stop=2&data=8");
    EXPECT_EQ(end.device, "/dev/ttyUSB0");
    EXPECT_EQ(end.baud, 19200U);
    EXPECT_EQ(end.parity, SerialEnd::Parity::Even);
    EXPECT_EQ(end.stopBits, 2U);
    EXPECT_EQ(serial("serial:COM3").baud, 9600U);
}

TEST(LinkUrl, IsRefusedWithWhatWouldBeRight) {
    for (const char* const url :
         {"", "tcp://host:1", "udp://", "udp://:5050", "udp://host:0", "udp://host:65536", "udp://host:port",
          "udp://2001:db8::5:5050", "udp://[::1", "udp://[::1]5050", "serial:", "serial:?baud=9600",
          "serial:/dev/x?baud=fast", "serial:/dev/x?speed=9600", "serial:/dev/x?parity=mark",
          "serial:/dev/x?stop=3", "serial:/dev/x?data=7", "serial:/dev/x?baud"}) {
        const host::ParsedLink link = parseLinkUrl(url);
        EXPECT_FALSE(link.end) << url;
        EXPECT_FALSE(link.what.empty()) << url;
        EXPECT_FALSE(link.remedy.empty()) << url;
    }
}

TEST(LinkUrl, TellsTheRangeOfPorts) {
    EXPECT_EQ(parseLinkUrl("udp://1.2.3.4:99999").what, "\":99999\" is no port from 1 to 65535");
}

TEST(LinkUrl, SurvivesTheWayThroughItsText) {
    for (const char* const url :
         {"udp://10.0.0.1:5050", "udp://[::1]:5050", "serial:/dev/x?baud=1200&parity=odd&stop=2"})
        EXPECT_EQ(toText(*parseLinkUrl(url).end), url);
}
