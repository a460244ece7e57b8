#include "TableText.h"
#include "site/SiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The columns of a point table that tell what a raw number means.

using namespace host;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string head = "id,name,kind,address,format,scale,offset,unit,decimals,deadband,description\n";

// The one finding of a table whose only row ends like this.
std::string findingOf(const std::string& address, const std::string& cells) {
    const bool isBit = address[0] == 'I' || address[0] == 'O';
    const TableText table =
        readTable(head + "1,P," + (isBit ? "status," : "analog,") + address + ',' + cells + '\n');
    EXPECT_EQ(table.findings.size(), 1U) << cells;
    EXPECT_THAT(table.points, IsEmpty());
    return table.findings.empty() ? "" : table.findings[0];
}

} // namespace

TEST(EngineeringColumns, TellWhatARawNumberMeans) {
    const TableText table = readTable(head + "1,LEVEL,analog,R2,,0.01,-20,m,2,0.05,Well of the pump house\n");
    EXPECT_THAT(table.findings, IsEmpty());
    ASSERT_EQ(table.points.size(), 1U);
    const Point& point = table.points[0];
    ASSERT_NE(point.engineering, nullptr);
    EXPECT_EQ(point.engineering->scaling.scale(), 0.01);
    EXPECT_EQ(point.engineering->scaling.offset(), -20);
    EXPECT_EQ(point.engineering->unit, "m");
    EXPECT_EQ(point.engineering->decimals, 2);
    EXPECT_EQ(point.engineering->deadband, 0.05);
    EXPECT_EQ(*point.description, "Well of the pump house");
}

TEST(EngineeringColumns, MayAllBeEmpty) {
    const TableText table = readTable(
        head + "1,LEVEL,analog,R2,,,,,,,\n2,RUN,status,O2,,,,,,,Pump 1 runs\n3,A,analog,R3,,1,0,,,0,\n");
    EXPECT_THAT(table.findings, IsEmpty());
    ASSERT_EQ(table.points.size(), 3U);
    EXPECT_EQ(table.points[0].engineering, nullptr);
    EXPECT_EQ(table.points[0].description, nullptr);
    EXPECT_EQ(*table.points[1].description, "Pump 1 runs");
    EXPECT_EQ(table.points[2].engineering, nullptr) << "nothing that would change a value";
}

// A million points of a table have a few scales and units between them.
TEST(EngineeringColumns, AreKeptOnceForAllPointsWithTheSame) {
    const TableText table =
        readTable(head + "1,A,analog,R1,,0.1,,m,,,\n2,B,analog,R2,,0.1,,m,,,\n3,C,analog,R3,,0.1,,s,,,\n");
    ASSERT_EQ(table.points.size(), 3U);
    EXPECT_EQ(table.points[0].engineering, table.points[1].engineering);
    EXPECT_NE(table.points[0].engineering, table.points[2].engineering);
}

TEST(EngineeringColumns, HaveDecimalCommasWhereSemicolonsSeparate) {
    const TableText table =
        readTable("id;name;kind;address;Scale;Offset;Unit\n1;A;analog;R1;0,1;-273,15;\xC2\xB0"
                  "C\n2;B;analog;R2;12,0;;\n");
    EXPECT_THAT(table.findings, IsEmpty());
    ASSERT_EQ(table.points.size(), 2U);
    EXPECT_EQ(table.points[0].engineering->scaling.scale(), 0.1);
    EXPECT_EQ(table.points[0].engineering->scaling.offset(), -273.15);
    EXPECT_EQ(table.points[0].engineering->unit, "\xC2\xB0"
                                                 "C");
    EXPECT_EQ(table.points[1].engineering->scaling.scale(), 12);
}

TEST(EngineeringColumns, KnowTheFormatIeee) {
    const TableText table = readTable(head + "1,A,analog,R1,IEEE,,,,,,\n2,B,analog,R2,float,,,,,,\n");
    ASSERT_EQ(table.points.size(), 2U);
    EXPECT_TRUE(table.points[0].isIeee);
    EXPECT_FALSE(table.points[0].isFloat);
    EXPECT_FALSE(table.points[1].isIeee);
    EXPECT_EQ(findingOf("T1", "ieee,,,,,,"),
              "p.csv:2:15: error: format ieee on T1; only registers (R) hold floats: leave the format empty");
    EXPECT_THAT(
        findingOf("R1", "double,,,,,,"),
        HasSubstr("p.csv:2:15: error: format \"double\" is not known; write float for the controller's own "
                  "floating-point format, ieee for IEEE 754"));
}

TEST(EngineeringColumns, AreRefusedWithTheirPlaceAndReason) {
    EXPECT_EQ(findingOf("R1", ",0,,,,,"),
              "p.csv:2:16: error: scale 0; give another number from 1e-30 on; with 0 "
              "every value would be the same");
    EXPECT_THAT(findingOf("R1", ",1e-40,,,,,"), HasSubstr("p.csv:2:16: error: scale too close to 0"));
    for (const char* const scale : {"1e40", "nan", "inf", "1.2.3", "ten", "1/10"})
        EXPECT_THAT(findingOf("R1", "," + std::string(scale) + ",,,,,"),
                    HasSubstr("p.csv:2:16: error: scale \"" + std::string(scale) +
                              "\" is out of range or no number"));
    EXPECT_THAT(findingOf("R1", ",,-inf,,,,"), HasSubstr("p.csv:2:17: error: offset \"-inf\""));
    EXPECT_THAT(findingOf("R1", ",0.001,1e7,,,,"),
                HasSubstr("offset 10000000 is too large beside scale 0.001"));
    EXPECT_THAT(findingOf("R1", ",,,,10,,"),
                HasSubstr("decimals \"10\" is out of range or no number; give a whole "
                          "number from 0 to 9"));
    EXPECT_THAT(findingOf("R1", ",,,,,-0.5,"), HasSubstr("p.csv:2:20: error: deadband below 0"));
    EXPECT_THAT(findingOf("R1", ",,,,,nan,"), HasSubstr("deadband \"nan\" is out of range or no number"));
}

TEST(EngineeringColumns, AreNothingForAStatusPoint) {
    EXPECT_EQ(findingOf("O2", ",0.1,,,,,"),
              "p.csv:2:16: error: scale on O2; only an analog point (R, T, C) takes it: leave it empty");
    EXPECT_THAT(findingOf("I2", ",,,m,,,"), HasSubstr("unit on I2"));
    EXPECT_THAT(findingOf("O2", ",,,,,1,"), HasSubstr("deadband on O2"));
}

TEST(EngineeringColumns, HoldOneLineOfWhatCanBeShown) {
    const TableText table = readTable(head + "1,A,analog,R1,,,,,,,\"first\nsecond\"\n");
    ASSERT_EQ(table.points.size(), 1U);
    EXPECT_EQ(*table.points[0].description, "first second");
    EXPECT_THAT(findingOf("R1", ",,,\"m\n/s\",,,"), HasSubstr("unit with control character"));
}

TEST(EngineeringColumns, AreKeysOfTheSiteFileToo) {
    const LoadedSite loaded = readSite(R"([[channel]]
id = 1
type = "SBus-Ethernet"
primary = "udp://127.0.0.1"
[[channel.rtu]]
id = 1
station = 5
[[channel.rtu.point]]
id = 1
name = "LEVEL"
kind = "analog"
address = "R2"
scale = 0.01
offset = -20
unit = "m"
decimals = 2
deadband = 0.5
description = "Well"
[[channel.rtu.point]]
id = 2
name = "X"
kind = "analog"
address = "R3"
scale = nan
)",
                                       "site.toml", [](const std::string&) { return text::FileText(); });
    ASSERT_EQ(loaded.site.channels.size(), 1U);
    ASSERT_EQ(loaded.site.channels[0].rtus[0].points.size(), 1U);
    const Point& point = loaded.site.channels[0].rtus[0].points[0];
    EXPECT_EQ(point.engineering->scaling.scale(), 0.01);
    EXPECT_EQ(point.engineering->scaling.offset(), -20);
    EXPECT_EQ(point.engineering->decimals, 2);
    EXPECT_EQ(*point.description, "Well");
    std::vector<std::string> findings;
    for (const Finding& finding : loaded.findings.all())
        findings.push_back(toText(finding));
    EXPECT_THAT(findings, ElementsAre(AllOf(HasSubstr("site.toml:24:9: error: scale \"nan\""))));
}
