#include "site/SiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using std::chrono::milliseconds;
using testing::HasSubstr;

namespace {

host::LoadedSite siteWith(const std::string& keys) {
    return host::readSite("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1\"\n"
                          "[[channel.rtu]]\nid = 1\nstation = 5\n" +
                              keys +
                              "\n[[channel.rtu.point]]\nid = 1\nname = \"P\"\nkind = \"analog\"\n"
                              "address = \"R1\"\n",
                          "site.toml", [](const std::string&) { return text::FileText(); });
}

host::Rtu rtuWith(const std::string& keys) {
    const host::LoadedSite loaded = siteWith(keys);
    EXPECT_FALSE(loaded.findings.hasErrors()) << toText(loaded.findings.all().front());
    return loaded.site.channels.at(0).rtus.at(0);
}

std::string faultOf(const std::string& keys) {
    const host::LoadedSite loaded = siteWith(keys);
    return loaded.findings.all().empty() ? "" : toText(loaded.findings.all().front());
}

} // namespace

TEST(StationKeys, LeaveTheDriversOwnTelegramsWhereNothingIsSaid) {
    const host::Rtu rtu = rtuWith("");
    EXPECT_FALSE(rtu.limits.readWords || rtu.limits.readBits || rtu.limits.writeWords);
    EXPECT_EQ(rtu.limits.gap, 0U);
    EXPECT_EQ(rtu.attempts, 3U);
    EXPECT_EQ(rtu.retry.first, milliseconds(5'000));
    EXPECT_EQ(rtu.retry.longest, milliseconds(60'000));
}

TEST(StationKeys, AreTakenOver) {
    const host::Rtu rtu = rtuWith("max_read_words = 20\nmax_read_bits = 64\nmax_write_words = 8\n"
                                  "max_gap = 3\nattempts = 1\nretry = \"500ms..2m\"");
    EXPECT_EQ(rtu.limits.readWords, 20U);
    EXPECT_EQ(rtu.limits.readBits, 64U);
    EXPECT_EQ(rtu.limits.writeWords, 8U);
    EXPECT_EQ(rtu.limits.gap, 3U);
    EXPECT_EQ(rtu.attempts, 1U);
    EXPECT_EQ(rtu.retry.first, milliseconds(500));
    EXPECT_EQ(rtu.retry.longest, milliseconds(120'000));
}

TEST(StationKeys, SingleWritesAreWritesOfOneWord) {
    EXPECT_EQ(rtuWith("single_writes = true").limits.writeWords, 1U);
    EXPECT_FALSE(rtuWith("single_writes = false").limits.writeWords.has_value());
    EXPECT_THAT(faultOf("single_writes = true\nmax_write_words = 8"),
                HasSubstr("single_writes contradicts max_write_words = 8"));
}

TEST(StationKeys, AreToldWhenTheyMakeNoSense) {
    EXPECT_THAT(faultOf("max_read_words = 0"), HasSubstr("give a whole number from 1 to 127"));
    EXPECT_THAT(faultOf("max_read_bits = 128"), HasSubstr("give a whole number from 1 to 127"));
    EXPECT_THAT(faultOf("max_write_words = 33"), HasSubstr("give a whole number from 1 to 32"));
    EXPECT_THAT(faultOf("attempts = 0"), HasSubstr("give a whole number from 1 to 10"));
    for (const char* const range : {"5s", "60s..5s", "0s..5s", "5..60", "..", "5s..60s.."})
        EXPECT_THAT(faultOf("retry = \"" + std::string(range) + "\""),
                    HasSubstr("write the first and the longest pause: \"5s..60s\""))
            << range;
}
