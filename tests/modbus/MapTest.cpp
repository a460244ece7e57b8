#include "ModbusSite.h"
#include "plan/ModbusMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ModbusMap;
using host::ModbusSettings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// The map of a site, as texts.
struct Laid {
    explicit Laid(const host::Site& site, const ModbusSettings& settings = {}) {
        host::Findings found;
        const ModbusMap map(site, settings, found);
        for (const host::MappedPoint& one : map.points())
            places.push_back((one.unit == 0 ? "" : std::to_string(one.unit) + ":") + one.point->name + "@" +
                             std::to_string(one.address));
        for (const host::Finding& finding : found.all())
            findings.push_back(toText(finding));
    }

    std::vector<std::string> places;
    std::vector<std::string> findings;
};

ModbusSettings withUnits() {
    ModbusSettings settings;
    settings.units = ModbusSettings::Units::Rtu;
    return settings;
}

std::string nameAt(const host::MappedPoint* point) {
    return point == nullptr ? "nothing" : point->point->name;
}

} // namespace

TEST(ModbusMap, FollowsTheOrderOfRtusAndPoints) {
    const Laid laid(modbusSite());
    EXPECT_THAT(laid.findings, IsEmpty());
    EXPECT_THAT(laid.places,
                ElementsAre("READY@0", "RUN@1", "FLOW@0", "LEVEL@2", "DEPTH@4", "VALVE@1000", "COUNT@1000"));
}

TEST(ModbusMap, FindsAValueByBothOfItsRegisters) {
    const host::Site site = modbusSite();
    host::Findings findings;
    const ModbusMap map(site, {}, findings);
    EXPECT_EQ(nameAt(map.statusAt(1, 1)), "RUN");
    EXPECT_EQ(nameAt(map.statusAt(1, 2)), "nothing");
    EXPECT_EQ(nameAt(map.statusAt(1, 65'535)), "nothing");
    EXPECT_EQ(nameAt(map.analogAt(1, 2)), "LEVEL");
    EXPECT_EQ(nameAt(map.analogAt(1, 3)), "LEVEL");
    EXPECT_EQ(nameAt(map.analogAt(1, 4)), "DEPTH");
    EXPECT_EQ(nameAt(map.analogAt(1, 999)), "nothing");
    EXPECT_EQ(nameAt(map.analogAt(255, 1'001)), "COUNT"); // whatever the unit
}

TEST(ModbusMap, NumbersPointsAsTheStoreDoes) {
    const host::Site site = modbusSite();
    host::Findings findings;
    const ModbusMap map(site, {}, findings);
    const host::PointTable table(site);
    ASSERT_EQ(map.points().size(), table.size());
    for (const host::MappedPoint& one : map.points())
        EXPECT_EQ(table.at(one.index).point, one.point) << one.point->name;
}

TEST(ModbusMap, MovesNothingForAPointOrAnRtuAtTheEnd) {
    host::Site site = modbusSite();
    site.channels[0].rtus[0].points.push_back(site.channels[0].rtus[0].points[3]);
    site.channels[0].rtus[0].points.back().name = "NEW";
    site.channels[0].rtus.push_back(site.channels[0].rtus[1]);
    const Laid laid(site);
    EXPECT_THAT(laid.places, ElementsAre("READY@0", "RUN@1", "FLOW@0", "LEVEL@2", "DEPTH@4", "NEW@6",
                                         "VALVE@1000", "COUNT@1000", "VALVE@2000", "COUNT@2000"));
}

TEST(ModbusMap, PutsAPointWhereItsColumnSaysAndMovesNoOther) {
    host::Site site = modbusSite();
    site.channels[0].rtus[0].points[2].modbus = 420;
    site.channels[0].rtus[0].points[0].modbus = 7;
    EXPECT_THAT(Laid(site).places, ElementsAre("READY@7", "RUN@1", "FLOW@420", "LEVEL@2", "DEPTH@4",
                                               "VALVE@1000", "COUNT@1000"));
}

TEST(ModbusMap, HasThePointsWithAColumnAloneWhereThatIsWanted) {
    host::Site site = modbusSite();
    site.channels[0].rtus[1].points[1].modbus = 9;
    ModbusSettings settings;
    settings.points = ModbusSettings::Points::Listed;
    EXPECT_THAT(Laid(site, settings).places, ElementsAre("COUNT@9"));
}

TEST(ModbusMap, GivesEachRtuAUnitByItsOrderOrItsKey) {
    host::Site site = modbusSite();
    EXPECT_THAT(Laid(site, withUnits()).places, ElementsAre("1:READY@0", "1:RUN@1", "1:FLOW@0", "1:LEVEL@2",
                                                            "1:DEPTH@4", "2:VALVE@0", "2:COUNT@0"));
    site.channels[0].rtus[0].modbusUnit = 40;
    host::Findings findings;
    const ModbusMap map(site, withUnits(), findings);
    EXPECT_EQ(nameAt(map.analogAt(40, 0)), "FLOW");
    EXPECT_EQ(nameAt(map.analogAt(2, 0)), "COUNT");
    EXPECT_EQ(nameAt(map.analogAt(1, 0)), "nothing");
    EXPECT_TRUE(map.hasUnit(40));
    EXPECT_FALSE(map.hasUnit(1));
}

TEST(ModbusMap, RefusesAUnitThatTwoRtusHave) {
    host::Site site = modbusSite();
    site.channels[0].rtus[0].modbusUnit = 2;
    EXPECT_THAT(Laid(site, withUnits()).findings,
                ElementsAre(HasSubstr("RTU 8 \"hill\" has the Modbus unit of another RTU: 2")));
}

TEST(ModbusMap, RefusesMoreRtusThanThereAreUnits) {
    host::Site site = modbusSite();
    site.channels[0].rtus.resize(248);
    const Laid laid(site, withUnits());
    EXPECT_THAT(laid.findings, ElementsAre(HasSubstr("would be unit 248")));
}

TEST(ModbusMap, RefusesMorePointsThanABlockHolds) {
    ModbusSettings settings;
    settings.block = 4;
    const Laid laid(modbusSite(), settings);
    EXPECT_THAT(laid.findings,
                ElementsAre(HasSubstr("RTU 7 \"pump-house\" has 3 analog points, for which "
                                      "[modbus] has a block of 4 registers; make block larger")));
    settings.block = 6;
    EXPECT_THAT(Laid(modbusSite(), settings).findings, IsEmpty());
}

TEST(ModbusMap, RefusesMoreBlocksThanATableHolds) {
    ModbusSettings settings;
    settings.block = 65'535;
    const Laid laid(modbusSite(), settings);
    // The one coil of "hill" still has a place, the two registers of its counter do not.
    EXPECT_THAT(laid.findings,
                ElementsAre(HasSubstr("RTU 8 \"hill\" has 1 analog point, for which [modbus] has "
                                      "no room before address 65536; make block smaller")));
}

TEST(ModbusMap, RefusesAPlaceThatIsTaken) {
    host::Site site = modbusSite();
    site.channels[0].rtus[1].points[1].modbus = 3; // the second register of LEVEL
    EXPECT_THAT(
        Laid(site).findings,
        ElementsAre(HasSubstr("hill.csv:3:1: error: Modbus address 3 of \"COUNT\" is taken by \"LEVEL\" "
                              "of RTU 7 \"pump-house\"")));
}

TEST(ModbusMap, KeepsTheAddressesOfQualityBitsFree) {
    host::Site site = modbusSite();
    ModbusSettings settings;
    settings.quality = ModbusSettings::Quality::Bits;
    site.channels[0].rtus[0].points[0].modbus = 0x3FFF;
    site.channels[0].rtus[0].points[2].modbus = 0x7FFE;
    EXPECT_THAT(Laid(site, settings).findings, IsEmpty());
    site.channels[0].rtus[0].points[0].modbus = 0x4000;
    site.channels[0].rtus[0].points[2].modbus = 0x7FFF;
    EXPECT_THAT(
        Laid(site, settings).findings,
        ElementsAre(HasSubstr("Modbus address 16384 of \"READY\" lies where the quality bits are; give it "
                              "one below 16384"),
                    HasSubstr("Modbus address 32767 of \"FLOW\" lies where the quality bits are; give it "
                              "one below 32767")));
}
