#include "site/SiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <map>

using host::LoadedSite;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

std::map<std::string, std::string> pointTables = {
    {"sites/pump.csv", "id,name,kind,address\n1,RUN,status,O32\n"}};

text::FileText openTable(const std::string& path) {
    const auto found = pointTables.find(path);
    if (found == pointTables.end())
        return {{}, "is not there"};
    return {found->second, {}};
}

LoadedSite read(const std::string& text) {
    return host::readSite(text, "sites/site.toml", openTable);
}

std::vector<std::string> findings(const LoadedSite& loaded) {
    std::vector<std::string> texts;
    for (const host::Finding& finding : loaded.findings.all())
        texts.push_back(toText(finding));
    return texts;
}

std::vector<std::string> findings(const std::string& text) {
    return findings(read(text));
}

const std::string ethernet = "[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://h:5050\"\n";
const std::string serial = "[[channel]]\nid = 1\ntype = \"SBus-Serial\"\nprimary = \"serial:/dev/x\"\n";
const std::string csvPoints = "points = \"pump.csv\"\n";

// Its path.
std::string writeFile(const QTemporaryDir& directory, const char* name, const std::string& text) {
    QFile file(directory.filePath(QString::fromLatin1(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.data(), static_cast<qint64>(text.size()));
    return file.fileName().toStdString();
}

std::string rtu(int id, const std::string& more) {
    return "[[channel.rtu]]\nid = " + std::to_string(id) + "\nstation = 5\n" + more;
}

} // namespace

TEST(SiteFile, IsReadWhole) {
    const LoadedSite loaded = read(R"(
[[channel]]
id = 1
name = "waterworks"
type = "SBus-Serial"
primary = "serial:/dev/ttyUSB0?baud=19200&parity=none&stop=1"
secondary = "serial:/dev/ttyUSB1"

[[channel.rtu]]
id = 1
name = "pump-house"
station = 5
timeout = "2s"
transmit_type = "break"
break_delay = 12
scan = { integrity = "2m", status = "500ms", analog = "3s" }
points = "pump.csv"

[[channel.rtu]]
id = 2
enabled = false
station = 6
[[channel.rtu.point]]
id = 4
name = "FLOW"
kind = "analog"
address = "R007"
format = "float"
)");
    EXPECT_THAT(findings(loaded), IsEmpty());
    ASSERT_EQ(loaded.site.channels.size(), 1U);
    const host::Channel& channel = loaded.site.channels[0];
    EXPECT_EQ(channel.name, "waterworks");
    EXPECT_EQ(channel.type, host::LineType::Serial);
    EXPECT_EQ(std::get<host::SerialEnd>(channel.primary).baud, 19200U);
    EXPECT_EQ(std::get<host::SerialEnd>(*channel.secondary).device, "/dev/ttyUSB1");
    ASSERT_EQ(channel.rtus.size(), 2U);
    EXPECT_EQ(channel.rtus[0].timeout, 2s);
    EXPECT_EQ(channel.rtus[0].scan.integrity, 2min);
    EXPECT_EQ(channel.rtus[0].scan.status, 500ms);
    EXPECT_EQ(channel.rtus[0].scan.analog, 3s);
    EXPECT_EQ(channel.rtus[0].points.at(0).name, "RUN");
    EXPECT_FALSE(channel.rtus[1].enabled);
    EXPECT_EQ(channel.rtus[1].name, "rtu-2");
    EXPECT_EQ(toText(channel.rtus[1].points.at(0).address), "R7");
    // What an RTU of a serial line leaves out, the others decide.
    EXPECT_EQ(channel.rtus[1].transmitType, host::TransmitType::Break);
    EXPECT_EQ(channel.rtus[1].breakDelayMs, 12U);
}

TEST(SiteFile, TakesTheTimeInWhichAnAnswerIsExpected) {
    const LoadedSite loaded = read(ethernet + "expected_answer = \"25ms\"\n" + rtu(1, csvPoints));
    EXPECT_THAT(findings(loaded), IsEmpty());
    EXPECT_EQ(loaded.site.channels.at(0).expectedAnswer, 25ms);
    EXPECT_EQ(read(ethernet + rtu(1, csvPoints)).site.channels.at(0).expectedAnswer, std::nullopt);
    EXPECT_THAT(
        findings(ethernet + "expected_answer = 25\n" + rtu(1, csvPoints)),
        ElementsAre(HasSubstr("site.toml:5:19: error: expected_answer is a duration without a unit")));
}

TEST(SiteFile, TellsAllFaultsOfALinkInOneGo) {
    EXPECT_THAT(findings("[[channel]]\nid = 1\ntype = \"SBus-Serial\"\n"
                         "primary = \"serial:/dev/x?baud=12345&stop=3\"\n" +
                         rtu(1, csvPoints)),
                ElementsAre("sites/site.toml:4:11: error: 12345 is no baud rate that this system knows; the "
                            "nearest that it knows: 9600 and 19200",
                            "sites/site.toml:4:11: error: stop \"3\" is no number of stop bits; write stop=1 "
                            "or stop=2"));
}

TEST(SiteFile, TellsAllFaultsInOneGo) {
    EXPECT_THAT(
        findings(R"([[channel]]
id = 1
type = "SBus-Token"
primary = "udp:h"
colour = "red"
[[channel.rtu]]
id = 1
station = 256
timeout = "1000"
scan = { status = "0s", analog = 2 }
points = "absent.csv"
)"),
        ElementsAre(
            HasSubstr("sites/site.toml:3:8: error: type \"SBus-Token\" is not known; write"),
            HasSubstr("sites/site.toml:4:11: error: \"udp:h\" is no line; write"),
            HasSubstr("sites/site.toml:5:1: error: unknown key \"colour\"; the keys here are"),
            HasSubstr("sites/site.toml:8:11: error: station 256 is out of range; give"),
            HasSubstr("sites/site.toml:9:11: error: timeout \"1000\" is no duration; write"),
            HasSubstr("sites/site.toml:10:19: error: status is 0; give"),
            HasSubstr("sites/site.toml:10:34: error: analog is a duration without a unit; write"),
            HasSubstr("sites/site.toml:11:10: error: point table \"sites/absent.csv\" is not there")));
}

TEST(SiteFile, TellsUnknownKeysAtEveryLevel) {
    EXPECT_THAT(findings("title = 1\n" + ethernet + "x = 1\n" +
                         rtu(1, "y = 1\nscan = { z = \"1s\" }\n[[channel.rtu.point]]\nid = 1\nname = \"A\"\n"
                                "kind = \"status\"\naddress = \"I1\"\nroom = \"m\"\n")),
                ElementsAre(HasSubstr(":1:1: error: unknown key \"title\""),
                            HasSubstr(":6:1: error: unknown key \"x\""),
                            HasSubstr(":10:1: error: unknown key \"y\""),
                            HasSubstr(":11:10: error: unknown key \"z\""),
                            HasSubstr(":17:1: error: unknown key \"room\"")));
}

TEST(SiteFile, TellsWhatIsMissing) {
    EXPECT_THAT(findings(""), ElementsAre(HasSubstr("error: channel is missing")));
    EXPECT_THAT(
        findings("[[channel]]\n[[channel.rtu]]\n"),
        ElementsAre(HasSubstr(":1:1: error: id is missing"), HasSubstr(":1:1: error: type is missing"),
                    HasSubstr(":1:1: error: primary is missing"), HasSubstr(":2:1: error: id is missing"),
                    HasSubstr(":2:1: error: station is missing")));
}

TEST(SiteFile, TellsIdsTakenTwice) {
    const std::string point =
        "[[channel.rtu.point]]\nid = 3\nname = \"A\"\nkind = \"status\"\naddress = \"I1\"\n";
    const std::string other =
        "[[channel.rtu.point]]\nid = 3\nname = \"B\"\nkind = \"analog\"\naddress = \"R1\"\n";
    EXPECT_THAT(findings(ethernet + rtu(1, point + other) + rtu(1, csvPoints) + ethernet),
                testing::UnorderedElementsAre(
                    HasSubstr(":13:1: error: point id 3 is already taken by \"A\" in line 8"),
                    HasSubstr(":19:6: error: RTU id 1 is already taken in line 6"),
                    HasSubstr(":19:6: error: RTU name \"rtu-1\" is already that of line 6"),
                    HasSubstr(":23:6: error: channel id 1 is already taken in line 2")));
}

TEST(SiteFile, TellsTwoRtusOfOneName) {
    EXPECT_THAT(findings(ethernet + rtu(1, "name = \"tank\"\n" + csvPoints) +
                         rtu(2, "name = \"tank\"\n" + csvPoints)),
                ElementsAre(HasSubstr(":11:6: error: RTU name \"tank\" is already that of line 6")));
}

// Commands tell them apart by their channels; lines of values do not.
TEST(SiteFile, WarnsOfRtusOfOneNameInTwoChannels) {
    const std::string second =
        "[[channel]]\nid = 2\nname = \"b\"\ntype = \"SBus-Ethernet\"\nprimary = \"udp://i:5050\"\n";
    const LoadedSite loaded = read(ethernet + rtu(1, csvPoints) + second + rtu(1, csvPoints));
    EXPECT_FALSE(loaded.findings.hasErrors());
    EXPECT_THAT(findings(loaded),
                ElementsAre(HasSubstr(":15:6: warning: RTU name \"rtu-1\" is that of line 6 too, in channel "
                                      "\"channel-1\"; commands need \"b/rtu-1\"")));
}

TEST(SiteFile, TellsTwoPointsOfOneName) {
    pointTables["sites/twice.csv"] =
        "id,name,kind,address\n1,RUN,status,I1\n2,run,status,I2\n3,RUN,analog,R1\n";
    EXPECT_THAT(findings(ethernet + rtu(1, "points = \"twice.csv\"\n") + rtu(2, csvPoints)),
                ElementsAre(HasSubstr("twice.csv:4:1: error: point name \"RUN\" is already that of line 2")));
    const std::string inlinePoint =
        "[[channel.rtu.point]]\nname = \"A\"\nkind = \"status\"\naddress = \"I1\"\nid = ";
    EXPECT_THAT(findings(ethernet + rtu(1, inlinePoint + "1\n" + inlinePoint + "2\n")),
                ElementsAre(HasSubstr(":13:1: error: point name \"A\" is already that of line 8")));
}

TEST(SiteFile, RefusesControlCharactersInEveryText) {
    EXPECT_THAT(findings("[[channel]]\nid = 1\nname = \"a\\u001b[2J\"\ntype = \"SBus-Ethernet\"\n"
                         "primary = \"udp://h\\u009b:5050\"\n\"k\\u0007\" = 1\n" +
                         rtu(1, "name = \"b\\nc\"\n[[channel.rtu.point]]\nid = 1\nname = \"d\\u007f\"\n"
                                "kind = \"status\"\naddress = \"I1\"\n")),
                ElementsAre(HasSubstr(":3:8: error: name holds control character U+001B"),
                            HasSubstr(":5:11: error: primary holds control character U+009B"),
                            HasSubstr(":6:1: error: unknown key \"k\\x07\""),
                            HasSubstr(":10:8: error: name holds control character U+000A"),
                            HasSubstr(":11:1: error: point without name"),
                            HasSubstr(":13:8: error: name holds control character U+007F")));
}

TEST(SiteFile, TellsANameThatIsNotUtf8) {
    EXPECT_THAT(
        findings("[[channel]]\nname = \"caf\xE9\"\n"),
        ElementsAre(HasSubstr("site.toml:2:12: error: text that is not UTF-8; save the file as UTF-8")));
}

TEST(SiteFile, SurvivesAKeyOfDotsAndDeepBrackets) {
    for (const char* const part : {"a.", "[", "{a="}) {
        std::string text = "x = ";
        for (int i = 0; i < 300'000; ++i)
            text += part;
        EXPECT_THAT(findings(text), ElementsAre(HasSubstr("error: "))) << part;
    }
}

TEST(SiteFile, PassesOverColumnsThatItIsToldToIgnore) {
    pointTables["sites/wide.csv"] = "id,name,kind,address,Unit,Ort\n1,RUN,status,O32,m,Halle\n";
    EXPECT_THAT(findings(ethernet + rtu(1, "points = \"wide.csv\"\nignore = [\"unit\", \"Ort\"]\n")),
                IsEmpty());
    EXPECT_THAT(findings(ethernet + rtu(1, "points = \"wide.csv\"\nignore = [\"unit\"]\n")),
                ElementsAre(HasSubstr("wide.csv:1:27: error: unknown column \"Ort\"")));
    EXPECT_THAT(findings(ethernet + rtu(1, "points = \"pump.csv\"\nignore = [1]\n") +
                         rtu(2, "points = \"pump.csv\"\nignore = \"a\"\n")),
                ElementsAre(HasSubstr(":9:11: error: an element of ignore is no text"),
                            HasSubstr(":14:10: error: ignore is no list")));
    EXPECT_THAT(findings(ethernet + rtu(1, "ignore = [\"a\"]\n[[channel.rtu.point]]\nid = 1\nname = \"A\"\n"
                                           "kind = \"status\"\naddress = \"I1\"\n")),
                ElementsAre(HasSubstr(":8:10: error: ignore without a point table")));
}

TEST(SiteFile, TellsALineThatDoesNotFitItsType) {
    EXPECT_THAT(findings("[[channel]]\nid = 1\ntype = \"SBus-Serial\"\nprimary = \"udp://h:1\"\n" +
                         rtu(1, csvPoints)),
                ElementsAre(HasSubstr(":4:11: error: primary \"udp://h:1\" does not fit type SBus-Serial")));
    EXPECT_THAT(
        findings(ethernet + "secondary = \"serial:/dev/x\"\n" + rtu(1, csvPoints)),
        ElementsAre(HasSubstr(":5:13: error: secondary \"serial:/dev/x\" does not fit type SBus-Ethernet")));
}

TEST(SiteFile, TellsRtusOfASerialLineThatDisagree) {
    EXPECT_THAT(
        findings(serial + rtu(2, "transmit_type = \"break\"\nbreak_delay = 8\n" + csvPoints) +
                 rtu(1, "transmit_type = \"data\"\nbreak_delay = 9\n" + csvPoints)),
        ElementsAre(
            HasSubstr(":14:17: error: transmit_type differs from that of RTU 2 (line 6); one setting"),
            HasSubstr(":15:15: error: break_delay differs from that of RTU 2 (line 6); one setting")));
}

TEST(SiteFile, TakesTransmitTypeOnEthernetWithoutEffect) {
    EXPECT_THAT(findings(ethernet + rtu(1, "transmit_type = \"data\"\nbreak_delay = 10\n" + csvPoints) +
                         rtu(2, "transmit_type = \"break\"\n" + csvPoints)),
                IsEmpty());
}

TEST(SiteFile, TellsADeviceThatTwoLinesWant) {
    const std::string second =
        "[[channel]]\nid = 2\ntype = \"SBus-Serial\"\nprimary = \"serial:/dev/x?baud=1200\"\n";
    EXPECT_THAT(findings(serial + rtu(1, csvPoints) + second + rtu(1, "name = \"b\"\n" + csvPoints)),
                ElementsAre(HasSubstr(":10:6: error: device /dev/x is already the line of channel 1")));
}

TEST(SiteFile, TellsPointsGivenInBothWays) {
    EXPECT_THAT(findings(ethernet + rtu(1, csvPoints + "[[channel.rtu.point]]\nid = 7\nname = \"A\"\n"
                                                       "kind = \"status\"\naddress = \"I1\"\n")),
                ElementsAre(HasSubstr(":8:10: error: points and [[channel.rtu.point]] tables in one RTU")));
}

TEST(SiteFile, TellsFaultsOfAPointTableWithItsName) {
    pointTables["sites/bad.csv"] = "id,name,kind,address\n1,A,status\n2,B,status,R1\n";
    EXPECT_THAT(findings(ethernet + rtu(1, "points = \"bad.csv\"\n")),
                ElementsAre(HasSubstr("sites/bad.csv:2:11: error: row with 3 columns"),
                            HasSubstr("sites/bad.csv:3:12: error: address R1 does not fit")));
}

TEST(SiteFile, TellsFaultsOfAPointTableOnceThoughTwoRtusUseIt) {
    pointTables["sites/shared.csv"] = "id,name,kind,address\n1,A,status\n2,B,status,R1\n";
    const std::string points = "points = \"shared.csv\"\n";
    EXPECT_THAT(findings(ethernet + rtu(1, points) + rtu(2, points)),
                ElementsAre(HasSubstr("sites/shared.csv:2:11: error: row with 3 columns"),
                            HasSubstr("sites/shared.csv:3:12: error: address R1 does not fit")));
}

TEST(SiteFile, TellsASyntaxErrorWithItsPlace) {
    const std::vector<std::string> texts = findings("[[channel]]\nid = = 1\n");
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_THAT(texts[0], HasSubstr("sites/site.toml:2:"));
}

TEST(SiteFile, WarnsOfWhatCannotBePolled) {
    const LoadedSite loaded = read(ethernet + "[[channel.rtu]]\nid = 1\nstation = 255\n");
    EXPECT_FALSE(loaded.findings.hasErrors());
    EXPECT_THAT(findings(loaded), ElementsAre(HasSubstr("warning: RTU 1 has no points"),
                                              HasSubstr("warning: station 255 is the broadcast address")));
}

TEST(SiteFile, TakesAPeriodForTheClock) {
    const LoadedSite loaded =
        read(serial + rtu(1, csvPoints + "time_sync = \"24h\"\n") + rtu(2, "name = \"b\"\n" + csvPoints));
    EXPECT_THAT(findings(loaded), IsEmpty());
    EXPECT_EQ(loaded.site.channels[0].rtus[0].timeSync, 24h);
    EXPECT_EQ(loaded.site.channels[0].rtus[1].timeSync, std::nullopt);
}

TEST(SiteFile, WarnsOfAClockThatIsOutOfReach) {
    EXPECT_THAT(findings(ethernet + rtu(1, csvPoints + "time_sync = \"24h\"\n")),
                ElementsAre(HasSubstr("site.toml:6:6: warning: time_sync on an Ethernet line")));
    EXPECT_THAT(findings(serial + rtu(1, "time_sync = \"24h\"\n")),
                ElementsAre(HasSubstr("has no points"), HasSubstr("time_sync without points")));
}

TEST(SiteFile, WarnsOfPulsesThatCannotBeSupervised) {
    const std::string head = "id,name,kind,address,value,second_address,pulse_ms\n";
    pointTables["sites/pulses.csv"] =
        head +
        "1,GOOD,status,O1,,,500\n2,TWO,status,O2,,O3,500\n3,OWN,status,O4,1,,500\n4,NONE,status,O5,1,,\n";
    EXPECT_THAT(findings(ethernet + rtu(1, "points = \"pulses.csv\"\n")),
                ElementsAre(HasSubstr("pulses.csv:3:1: warning: an off command does not reset what the pulse "
                                      "of \"TWO\" sets"),
                            HasSubstr("pulses.csv:4:1: warning: an off command does not reset what the pulse "
                                      "of \"OWN\" sets")));
}

TEST(SiteFile, TellsAnEmptySiteFileByWhatIsMissing) {
    const QTemporaryDir directory;
    const std::string path = writeFile(directory, "site.toml", "");
    EXPECT_THAT(findings(host::loadSite(path)),
                ElementsAre(HasSubstr("site.toml:1:1: error: channel is missing")));
}

TEST(SiteFile, TellsAnEmptyPointTableAsEmpty) {
    const QTemporaryDir directory;
    writeFile(directory, "empty.csv", "");
    const std::string path = writeFile(directory, "site.toml", ethernet + rtu(1, "points = \"empty.csv\"\n"));
    EXPECT_THAT(findings(host::loadSite(path)),
                ElementsAre(HasSubstr("empty.csv:1:1: error: empty point table")));
}

TEST(SiteFile, TellsADirectory) {
    const QTemporaryDir directory;
    EXPECT_THAT(findings(host::loadSite(directory.path().toStdString())),
                ElementsAre(HasSubstr("error: is a directory")));
}

TEST(SiteFile, TellsAFileThatIsNotThere) {
    const LoadedSite loaded = host::loadSite("no/such/site.toml");
    EXPECT_THAT(findings(loaded), ElementsAre(HasSubstr("no/such/site.toml: error: is not there")));
}

TEST(SiteFile, NamesTheSiteOrIsItsName) {
    EXPECT_EQ(read("site = \"north\"\n" + ethernet).site.name, "north");
    EXPECT_EQ(read(ethernet).site.name, "site");
}

TEST(SiteFile, TellsANameThatIsNoLevelOfATopic) {
    for (const char* const name : {"a/b", "a+", "#"})
        EXPECT_THAT(findings("site = \"" + std::string(name) + "\"\n" + ethernet),
                    ElementsAre("sites/site.toml:1:8: error: site \"" + std::string(name) +
                                "\" is no name for a site; write a name in quotes, without \"/\", \"+\" and "
                                "\"#\""));
}
