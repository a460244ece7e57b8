#include "SiteFile.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using testing::ElementsAre;

namespace {

class SiteFile : public testing::Test {
protected:
    Site load(const std::string& text) {
        file = folder.write("site.toml", text);
        return loadSite(file, errors);
    }

    TemporaryFolder folder;
    std::string file;
    std::vector<std::string> errors;
};

const std::string waterworks = R"([[channel]]
id = 1
name = "waterworks"
type = "SBus-Ethernet"
primary = "udp://127.0.0.1:5050"
secondary = "udp://127.0.0.1:5051"

[[channel.rtu]]
id = 1
name = "pump-house"
station = 5
timeout = "1s"
scan = { integrity = "60s", status = "1s", analog = "2s" }
points = "pump-house.csv"

[[channel.rtu]]
id = 2
name = "tank"
station = 6
surprise = true
)";

std::string serialChannel(const std::string& firstType, const std::string& secondType) {
    return R"([[channel]]
id = 2
type = "SBus-Serial"
primary = "serial:/tmp/line?baud=19200"
[[channel.rtu]]
id = 2
station = 1
transmit_type = ")" +
           firstType + R"("
[[channel.rtu]]
id = 1
station = 2
transmit_type = ")" +
           secondType + "\"\n";
}

} // namespace

TEST_F(SiteFile, GivesLinesAndStations) {
    const Site site = load(waterworks);
    EXPECT_THAT(errors, ElementsAre());
    ASSERT_EQ(site.lines.size(), 1U);
    EXPECT_EQ(site.lines[0].id, 1);
    EXPECT_EQ(site.lines[0].name, "waterworks");
    EXPECT_EQ(site.lines[0].framing, Framing::Ethernet);
    EXPECT_EQ(site.lines[0].primary.port, 5050);
    ASSERT_TRUE(site.lines[0].secondary);
    EXPECT_EQ(site.lines[0].secondary->port, 5051);
    EXPECT_THAT(site.lines[0].stations, ElementsAre(5, 6));
}

TEST_F(SiteFile, TakesTheModeOfTheRtuThatNamesOne) {
    const std::string silentOne = "[[channel.rtu]]\nid = 9\nstation = 3\n";
    EXPECT_EQ(load(serialChannel("break", "break") + silentOne).lines.at(0).framing, Framing::BreakMode);
    EXPECT_EQ(load(serialChannel("data", "data") + silentOne).lines.at(0).framing, Framing::DataMode);
}

TEST_F(SiteFile, GivesThePointsOfEachStation) {
    folder.write("pump-house.csv",
                 "id,name,address,format\n1,RUN,O32,\n2,\"FLOW, M3\",r 300,Float\n3,NONE,,\n");
    const Site site = load(waterworks + "[[channel.rtu.point]]\nid = 1\naddress = \"F7\"\n");
    const std::vector<SitePoint>& pumpHouse = site.lines.at(0).points.at(5);
    ASSERT_EQ(pumpHouse.size(), 2U);
    EXPECT_EQ(pumpHouse[0].media, Media::Outputs);
    EXPECT_EQ(pumpHouse[0].address, 32U);
    EXPECT_FALSE(pumpHouse[0].isFloat);
    EXPECT_EQ(pumpHouse[1].media, Media::Registers);
    EXPECT_EQ(pumpHouse[1].address, 300U);
    EXPECT_TRUE(pumpHouse[1].isFloat);
    const std::vector<SitePoint>& tank = site.lines.at(0).points.at(6);
    ASSERT_EQ(tank.size(), 1U);
    EXPECT_EQ(tank[0].media, Media::Flags);
}

TEST_F(SiteFile, TakesTheModeOfTheRtuWithTheHighestId) {
    EXPECT_EQ(load(serialChannel("break", "data")).lines.at(0).framing, Framing::BreakMode);
    EXPECT_EQ(load(serialChannel("data", "break")).lines.at(0).framing, Framing::DataMode);
    EXPECT_THAT(errors, ElementsAre());
}

TEST_F(SiteFile, ABroadcastStationIsNoController) {
    const Site site = load(R"([[channel]]
id = 1
type = "SBus-Ethernet"
primary = "udp://127.0.0.1:5050"
rtu = [{ id = 1, station = 255 }, { id = 2, station = 0 }]
)");
    EXPECT_THAT(errors, ElementsAre());
    EXPECT_THAT(site.lines.at(0).stations, ElementsAre(0));
}

TEST_F(SiteFile, ListsEveryMistakeWithFileLineAndKey) {
    load(R"([[channel]]
id = 1
type = "SBus-Ethernet"
primary = "udp://127.0.0.1"
[[channel.rtu]]
station = 256
id = 1
[[channel]]
id = 1
type = "SBus-Serial"
primary = "udp://127.0.0.1:5050"
secondary = 7
[[channel.rtu]]
id = 1
transmit_type = "both"
[[channel]]
type = "Telepathy"
primary = "serial:/tmp/line"
rtu = 7
)");
    EXPECT_THAT(errors,
                ElementsAre(file + ":4: primary: needs a host and a port, as in udp://192.168.10.5:5050",
                            file + ":6: station: must be a whole number from 0 to 255",
                            file + ":9: id: channel 1 is there already",
                            file + ":11: primary: an SBus-Serial channel needs serial:",
                            file + ":12: secondary: must be a text, as in \"udp://192.168.10.5:5050\"",
                            file + ":13: station: is missing; must be a whole number from 0 to 255",
                            file + ":15: transmit_type: must be \"data\" or \"break\"",
                            file + ":16: id: is missing; must be a whole number from 0 to 2147483647",
                            file + ":17: type: must be \"SBus-Ethernet\" or \"SBus-Serial\"",
                            file + ":19: rtu: must be [[channel.rtu]] tables"));
}

TEST_F(SiteFile, TakesALineWhoseControllersAreStillToCome) {
    const Site site =
        load("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:5050\"\n");
    EXPECT_THAT(errors, ElementsAre());
    ASSERT_EQ(site.lines.size(), 1U);
    EXPECT_TRUE(site.lines.front().stations.empty());
}

TEST_F(SiteFile, SaysWhereTheTextIsNoToml) {
    load("[[channel]]\nid = \n");
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(errors[0].find(file + ":2: "), 0U) << errors[0];
}

TEST_F(SiteFile, AnEmptyOneIsAMistake) {
    load("");
    EXPECT_THAT(errors, ElementsAre(file + ":1: channel: there must be at least one [[channel]] table"));
}

TEST_F(SiteFile, AMissingOneIsAMistake) {
    loadSite(folder.path("none.toml"), errors);
    EXPECT_THAT(errors, ElementsAre(folder.path("none.toml") + ": is not there"));
}

TEST_F(SiteFile, OfDotsOrBracketsAloneIsAMistake) {
    for (const char* const part : {"a.", "[", "{a="}) {
        std::string text = "x = ";
        for (int i = 0; i < 300'000; ++i)
            text += part;
        errors.clear();
        load(text);
        ASSERT_EQ(errors.size(), 1U) << part;
        EXPECT_EQ(errors[0].find(file + ":1: "), 0U) << errors[0];
    }
}

TEST_F(SiteFile, RefusesControlCharactersInNamesAndEnds) {
    load(R"([[channel]]
id = 1
name = "a\u001b[2J"
type = "SBus-Ethernet"
primary = "udp://127.0.0.1\u009b:5050"
)");
    EXPECT_THAT(errors, ElementsAre(file + ":3: name: holds control character U+001B; take it out",
                                    file + ":5: primary: holds control character U+009B; take it out"));
}
