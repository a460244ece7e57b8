#include "site/NetworkRange.h"

#include <gtest/gtest.h>

using host::NetworkRange;

namespace {

bool contains(const char* range, const char* address) {
    return NetworkRange::parse(range).value().contains(address);
}

} // namespace

TEST(NetworkRange, HoldsTheAddressesOfItsNetwork) {
    EXPECT_TRUE(contains("10.0.0.0/8", "10.255.1.2"));
    EXPECT_FALSE(contains("10.0.0.0/8", "11.0.0.1"));
    EXPECT_TRUE(contains("192.168.10.64/27", "192.168.10.95"));
    EXPECT_FALSE(contains("192.168.10.64/27", "192.168.10.96"));
    EXPECT_TRUE(contains("0.0.0.0/0", "8.8.8.8"));
    EXPECT_TRUE(contains("fd00::/8", "fdff::1"));
    EXPECT_FALSE(contains("fd00::/8", "fe80::1"));
}

TEST(NetworkRange, IsOneComputerWithoutALength) {
    EXPECT_TRUE(contains("192.168.10.5", "192.168.10.5"));
    EXPECT_FALSE(contains("192.168.10.5", "192.168.10.4"));
    EXPECT_TRUE(contains("::1", "::1"));
    EXPECT_FALSE(contains("::1", "::2"));
}

TEST(NetworkRange, TakesAMappedAddressForItsIpv4Address) {
    EXPECT_TRUE(contains("10.0.0.0/8", "::ffff:10.0.0.1"));
    EXPECT_FALSE(contains("10.0.0.0/8", "::ffff:11.0.0.1"));
    EXPECT_FALSE(contains("10.0.0.0/8", "a00::1"));
}

TEST(NetworkRange, IsNothingElse) {
    for (const char* const text : {"", "10.0.0.0/33", "10.0.0.0/", "10.0.0.0/-1", "10.0.0/8", "host",
                                   "::/129", "10.0.0.0/8/8", "10.0.0.0 /8"})
        EXPECT_FALSE(NetworkRange::parse(text)) << text;
    EXPECT_FALSE(contains("0.0.0.0/0", "no address"));
}
