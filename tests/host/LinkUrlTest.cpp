#include "site/LinkUrl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::parseLinkUrl;
using host::SerialEnd;
using host::UdpEnd;
using testing::ElementsAre;

namespace {

UdpEnd udp(const std::string& url) {
    return std::get<UdpEnd>(parseLinkUrl(url).end.value());
}

SerialEnd serial(const std::string& url) {
    return std::get<SerialEnd>(parseLinkUrl(url).end.value());
}

std::vector<std::string> faultsOf(const std::string& url) {
    std::vector<std::string> texts;
    for (const host::LinkFault& fault : parseLinkUrl(url).faults)
        texts.push_back(fault.what);
    return texts;
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
        ASSERT_EQ(link.faults.size(), 1U) << url;
        EXPECT_FALSE(link.faults[0].what.empty()) << url;
        EXPECT_FALSE(link.faults[0].remedy.empty()) << url;
    }
}

TEST(LinkUrl, TellsTheRangeOfPorts) {
    EXPECT_THAT(faultsOf("udp://1.2.3.4:99999"), ElementsAre("\":99999\" is no port from 1 to 65535"));
}

TEST(LinkUrl, TellsAllFaultsInOneGo) {
    EXPECT_THAT(faultsOf("serial:?baud=12345&parity=mark&stop=3&data=7&speed=1&stop=1"),
                ElementsAre("no device in \"serial:?baud=12345&parity=mark&stop=3&data=7&speed=1&stop=1\"",
                            "12345 is no baud rate that this system knows", "parity \"mark\" is not known",
                            "stop \"3\" is no number of stop bits", "data \"7\" will not do",
                            "serial setting \"speed=1\" is not known", "stop is given twice"));
    EXPECT_THAT(faultsOf("udp://a b:0"),
                ElementsAre("no host in \"udp://a b:0\"", "\":0\" is no port from 1 to 65535"));
}

TEST(LinkUrl, NamesTheBaudRatesThatTheSystemKnowsInstead) {
    const auto remedyOf = [](const char* url) { return parseLinkUrl(url).faults.at(0).remedy; };
    EXPECT_EQ(remedyOf("serial:/dev/x?baud=9601"), "the nearest that it knows: 9600 and 19200");
    EXPECT_EQ(remedyOf("serial:/dev/x?baud=49"), "the nearest that it knows: 50");
    EXPECT_EQ(remedyOf("serial:/dev/x?baud=4294967295"), "the nearest that it knows: 4000000");
}

TEST(LinkUrl, HintsAtTheBracketsOfAnIpv6Address) {
    const host::LinkFault fault = parseLinkUrl("udp://::1").faults.at(0);
    EXPECT_EQ(fault.what, "\"::1\" is an IPv6 address without its brackets");
    EXPECT_EQ(fault.remedy, "write udp://[::1], or udp://[::1]:5050 with a port");
}

TEST(LinkUrl, SurvivesTheWayThroughItsText) {
    for (const char* const url :
         {"udp://10.0.0.1:5050", "udp://[::1]:5050", "serial:/dev/x?baud=1200&parity=odd&stop=2"})
        EXPECT_EQ(toText(*parseLinkUrl(url).end), url);
}

TEST(LinkUrl, HoldsNoControlCharacter) {
    for (const char* const url : {"udp://a\x1B[2J:5050", "serial:/dev/\xC2\x9Bx", "serial:/dev/x\n"})
        EXPECT_FALSE(host::parseLinkUrl(url).end) << url;
}
