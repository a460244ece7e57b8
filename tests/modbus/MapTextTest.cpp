#include "ModbusSite.h"
#include "plan/ModbusMapText.h"

#include <gtest/gtest.h>

using host::ModbusSettings;

namespace {

class ModbusMapText : public testing::Test {
protected:
    ModbusMapText() {
        site.channels[0].rtus.pop_back();
        std::vector<host::Point>& points = site.channels[0].rtus[0].points;
        points.erase(points.begin() + 2, points.begin() + 4); // leaves READY, RUN and DEPTH
        points[1].name = "RUN, 1";
        settings.listen = {"127.0.0.1", 1502, {}};
    }

    host::ModbusMap map() const {
        host::Findings findings;
        return {site, settings, findings};
    }

    host::Site site = modbusSite();
    ModbusSettings settings;
};

} // namespace

TEST_F(ModbusMapText, IsATableForPeople) {
    EXPECT_EQ(
        host::modbusMapTable(map(), settings),
        "Modbus TCP on 127.0.0.1:1502, read only, of 32-bit values the upper half first; a value that is not "
        "good is answered with exception 0x0B\n"
        "unit  table             address  reference  count  format   access  channel     rtu         id  "
        "name    "
        "value_unit\n"
        "any   discrete input    0        100001     1      bit      read    waterworks  pump-house  1   "
        "READY\n"
        "any   discrete input    1        100002     1      bit      read    waterworks  pump-house  2   "
        "RUN, 1\n"
        "any   coil              1        000002     1      bit      read    waterworks  pump-house  2   "
        "RUN, 1\n"
        "any   input register    0        300001     2      float32  read    waterworks  pump-house  5   "
        "DEPTH   "
        "m\n"
        "any   holding register  0        400001     2      float32  read    waterworks  pump-house  5   "
        "DEPTH   "
        "m\n");
}

TEST_F(ModbusMapText, IsCommaSeparatedForPrograms) {
    settings.takesWrites = true;
    settings.units = ModbusSettings::Units::Rtu;
    settings.quality = ModbusSettings::Quality::Bits;
    EXPECT_EQ(
        host::modbusMapCsv(map(), settings),
        "unit,table,address,reference,count,format,access,quality,channel,rtu,id,name,value_unit\n"
        "1,discrete input,0,100001,1,bit,read,16384,waterworks,pump-house,1,READY,\n"
        "1,discrete input,1,100002,1,bit,read,16385,waterworks,pump-house,2,\"RUN, 1\",\n"
        "1,coil,1,000002,1,bit,\"read, write\",16385,waterworks,pump-house,2,\"RUN, 1\",\n"
        "1,input register,0,300001,2,float32,read,32768,waterworks,pump-house,5,DEPTH,m\n"
        "1,holding register,0,400001,2,float32,\"read, write\",32768,waterworks,pump-house,5,DEPTH,m\n");
}
