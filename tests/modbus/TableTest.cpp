#include "site/SiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ModbusSettings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

host::LoadedSite read(const std::string& table, const std::string& rtu = "",
                      const std::string& column = "9") {
    return host::readSite("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://h:5050\"\n"
                          "[[channel.rtu]]\nid = 1\nstation = 5\n" +
                              rtu +
                              "points = \"p.csv\"\n"
                              "[modbus]\n" +
                              table,
                          "site.toml", [&column](const std::string&) {
                              return text::FileText{"id,name,kind,address,modbus\n1,RUN,status,O1,\n"
                                                    "2,LEVEL,analog,R1," +
                                                        column + "\n",
                                                    ""};
                          });
}

std::vector<std::string> findings(const host::LoadedSite& loaded) {
    std::vector<std::string> texts;
    for (const host::Finding& finding : loaded.findings.all())
        texts.push_back(toText(finding));
    return texts;
}

} // namespace

TEST(ModbusTable, IsReadOnlyWithOneMapAndExceptionsUnlessItSaysMore) {
    const host::LoadedSite loaded = read("listen = \"127.0.0.1:1502\"\n");
    EXPECT_THAT(findings(loaded), IsEmpty());
    const ModbusSettings settings = loaded.site.modbus.value();
    EXPECT_EQ(toText(settings.listen), "127.0.0.1:1502");
    EXPECT_FALSE(settings.takesWrites);
    EXPECT_TRUE(settings.allowed.empty());
    EXPECT_EQ(settings.units, ModbusSettings::Units::One);
    EXPECT_EQ(settings.points, ModbusSettings::Points::All);
    EXPECT_EQ(settings.block, 1'000U);
    EXPECT_EQ(settings.quality, ModbusSettings::Quality::Exception);
    EXPECT_EQ(settings.wordOrder, ModbusSettings::WordOrder::HighFirst);
}

TEST(ModbusTable, SaysAllThatCanBeChosen) {
    const host::LoadedSite loaded =
        read("listen = \"[::1]:502\"\nallow = [\"10.0.0.0/8\"]\nwrites = true\nunits = \"rtu\"\n"
             "points = \"listed\"\nblock = 200\nquality = \"bits\"\nword_order = \"low-first\"\n");
    EXPECT_THAT(findings(loaded), IsEmpty());
    const ModbusSettings settings = loaded.site.modbus.value();
    EXPECT_TRUE(settings.takesWrites);
    ASSERT_EQ(settings.allowed.size(), 1U);
    EXPECT_TRUE(settings.allowed[0].contains("10.1.2.3"));
    EXPECT_EQ(settings.units, ModbusSettings::Units::Rtu);
    EXPECT_EQ(settings.points, ModbusSettings::Points::Listed);
    EXPECT_EQ(settings.block, 200U);
    EXPECT_EQ(settings.quality, ModbusSettings::Quality::Bits);
    EXPECT_EQ(settings.wordOrder, ModbusSettings::WordOrder::LowFirst);
}

TEST(ModbusTable, IsNotThereUnlessTheSiteHasIt) {
    EXPECT_FALSE(host::readSite("", "site.toml", [](const std::string&) {
                     return text::FileText();
                 }).site.modbus.has_value());
}

TEST(ModbusTable, TellsWhatIsWrong) {
    EXPECT_THAT(findings(read("allow = [\"10.0.0.0/40\"]\nunits = \"two\"\nblock = 0\nport = 502\n")),
                ElementsAre(HasSubstr("9:1: error: listen is missing"),
                            HasSubstr("allow \"10.0.0.0/40\" is no network"),
                            HasSubstr("units \"two\" is not known; write \"one\" or \"rtu\""),
                            HasSubstr("block"), HasSubstr("port")));
}

TEST(ModbusTable, WarnsOfAnAddressThatIsOpenToAll) {
    EXPECT_THAT(findings(read("listen = \"0.0.0.0:502\"\n")),
                ElementsAre(HasSubstr("warning: whoever reaches 0.0.0.0:502 can read every value of the map: "
                                      "Modbus has no password")));
    EXPECT_THAT(findings(read("listen = \"0.0.0.0:502\"\nwrites = true\n")),
                ElementsAre(HasSubstr("and command its points")));
    EXPECT_THAT(findings(read("listen = \"0.0.0.0:502\"\nallow = [\"10.0.0.5\"]\n")), IsEmpty());
}

TEST(ModbusTable, LeavesRtusAndPointsTheirOwnNumbers) {
    const host::LoadedSite loaded = read("listen = \"127.0.0.1:1502\"\n", "modbus_unit = 17\n", "420");
    EXPECT_THAT(findings(loaded), IsEmpty());
    const host::Rtu& rtu = loaded.site.channels[0].rtus[0];
    EXPECT_EQ(rtu.modbusUnit, 17U);
    ASSERT_EQ(rtu.points.size(), 2U);
    EXPECT_FALSE(rtu.points[0].modbus.has_value());
    EXPECT_EQ(rtu.points[1].modbus, 420);
}

TEST(ModbusTable, RefusesNumbersThatNobodyCanHave) {
    EXPECT_THAT(findings(read("listen = \"127.0.0.1:1502\"\n", "modbus_unit = 248\n")),
                ElementsAre(HasSubstr("modbus_unit")));
    // The second register of the value would be the 65,537th.
    EXPECT_THAT(
        findings(read("listen = \"127.0.0.1:1502\"\n", "", "65535")),
        ElementsAre(HasSubstr("p.csv:3:19: error: modbus \"65535\" is out of range or no number; give a "
                              "whole number from 0 to 65534")));
}
