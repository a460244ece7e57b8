#include "plan/DescriptorNeed.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

Site siteOf(std::vector<LinkEnd> primaries) {
    Site site;
    for (LinkEnd& end : primaries) {
        Channel channel;
        channel.primary = std::move(end);
        site.channels.push_back(channel);
    }
    return site;
}

const UdpEnd byAddress{"192.168.0.5", 5050};
const UdpEnd byLongAddress{"2001:db8::5", 5050};
const UdpEnd byName{"tank.example", 5050};

std::size_t neededBeyondNoLine(const Site& site, const BesideLines& beside = {}) {
    return descriptorsNeeded(site, beside) - descriptorsNeeded(Site(), {});
}

} // namespace

TEST(DescriptorNeed, IsFourForEachEndOfALine) {
    EXPECT_EQ(neededBeyondNoLine(siteOf({byAddress})), 4U);
    EXPECT_EQ(neededBeyondNoLine(siteOf({byAddress, byLongAddress, SerialEnd{"/dev/ttyS0"}})), 12U);
    Site redundant = siteOf({byAddress});
    redundant.channels[0].secondary = SerialEnd{"/dev/ttyS0"};
    EXPECT_EQ(neededBeyondNoLine(redundant), 8U);
}

TEST(DescriptorNeed, IsMoreWhereAHostNameHasToBeLookedUp) {
    EXPECT_EQ(neededBeyondNoLine(siteOf({byName, byAddress})), 14U);
}

TEST(DescriptorNeed, IsMoreWithAModbusServerByItsClients) {
    Site site = siteOf({byAddress});
    site.modbus = ModbusSettings();
    EXPECT_EQ(neededBeyondNoLine(site), 4U + 5U + mostModbusClients);
}

TEST(DescriptorNeed, IsMoreWithAnHttpServer) {
    Site site = siteOf({byAddress});
    site.http.emplace();
    EXPECT_EQ(neededBeyondNoLine(site), 4U + 5U + mostHttpClients);
}

TEST(DescriptorNeed, IsMoreWithLogFilesACaptureAndTheControlSocket) {
    const Site site = siteOf({byAddress, byAddress});
    BesideLines beside;
    beside.hasLogFiles = true;
    EXPECT_EQ(neededBeyondNoLine(site, beside), 10U);
    beside.hasCapture = true;
    EXPECT_EQ(neededBeyondNoLine(site, beside), 12U);
    beside.hasControl = true;
    EXPECT_EQ(neededBeyondNoLine(site, beside), 12U + 5U + leastControlClients);
}

TEST(DescriptorNeed, IsMoreWithABroker) {
    Site site = siteOf({byAddress});
    site.mqtt.emplace();
    EXPECT_EQ(neededBeyondNoLine(site), 4U + 14U);
}
