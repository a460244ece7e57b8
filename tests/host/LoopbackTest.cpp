#include "site/Loopback.h"
#include "LoopbackEnds.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(Loopback, HasAPlaceForEveryEnd) {
    for (const LoopbackEnd& one : loopbackEnds)
        EXPECT_EQ(toText(onLoopback(*host::parseLinkUrl(one.end).end, "/site")), one.onLoopback);
}

TEST(Loopback, TakesBothEndsOfALine) {
    host::Site site;
    site.channels.resize(1);
    site.channels[0].primary = host::UdpEnd{"10.0.0.5", 5050};
    site.channels[0].secondary = host::UdpEnd{"10.0.0.6", 5050};
    moveToLoopback(site, "/site");
    EXPECT_EQ(toText(site.channels[0].primary), "udp://127.0.0.5:5050");
    EXPECT_EQ(toText(*site.channels[0].secondary), "udp://127.0.0.6:5050");
}

TEST(Loopback, PutsLinksBesideTheSiteFile) {
    const std::string plant = std::filesystem::absolute("/plant").u8string();
    EXPECT_EQ(host::loopbackFolderOf("/plant/site.toml"), plant);
}
