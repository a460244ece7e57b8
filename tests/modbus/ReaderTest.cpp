#include "ModbusSite.h"
#include "PduText.h"
#include "services/modbus/ModbusReader.h"

#include <gtest/gtest.h>

using host::ModbusSettings;

namespace {

class ModbusReading : public testing::Test {
protected:
    std::string answer(const char* request, unsigned unit = 1) {
        host::Findings findings;
        const host::ModbusMap map(site, settings, findings);
        host::ModbusReader reader(map, settings, store);
        const host::ModbusPdu pdu = bytes(request);
        return text(reader.answer(unit, pdu, std::get<host::ModbusRead>(host::parseModbusRequest(pdu))));
    }

    const host::Site site = modbusSite();
    ModbusSettings settings;
    host::ValueStore store{site};
};

} // namespace

TEST_F(ModbusReading, GivesBitsAndRegistersOfGoodValues) {
    publishAll(store);
    publish(store, 7, 1, 0); // RUN
    EXPECT_EQ(answer("02 00 00 00 02"), "02 01 01");
    EXPECT_EQ(answer("01 00 01 00 01"), "01 01 00");
    EXPECT_EQ(answer("04 00 00 00 06"), "04 0C 3F C0 00 00 FF FF FF FE 41 45 70 A4");
    EXPECT_EQ(answer("03 00 02 00 02"), "03 04 FF FF FF FE");
    EXPECT_EQ(answer("03 03 E8 00 02"), "03 04 00 01 11 70");
}

TEST_F(ModbusReading, GivesTheLowerHalfFirstWhereThatIsWanted) {
    publishAll(store);
    settings.wordOrder = ModbusSettings::WordOrder::LowFirst;
    EXPECT_EQ(answer("03 03 E8 00 02"), "03 04 11 70 00 01");
}

TEST_F(ModbusReading, RefusesARequestThatTouchesAValueThatIsNotGood) {
    publishAll(store);
    publish(store, 7, 3, -2, PointQuality::Bad); // LEVEL
    EXPECT_EQ(answer("04 00 00 00 06"), "84 0B");
    EXPECT_EQ(answer("04 00 00 00 02"), "04 04 3F C0 00 00");
    EXPECT_EQ(answer("04 00 04 00 02"), "04 04 41 45 70 A4");
    publish(store, 7, 0, 1, PointQuality::Refused); // READY
    EXPECT_EQ(answer("02 00 00 00 02"), "82 0B");
    EXPECT_EQ(answer("02 00 01 00 01"), "02 01 01");
}

TEST_F(ModbusReading, RefusesWhatWasNeverRead) {
    EXPECT_EQ(answer("01 00 01 00 01"), "81 0B");
    EXPECT_EQ(answer("03 00 00 00 02"), "83 0B");
}

TEST_F(ModbusReading, RefusesAddressesBeyondTheMap) {
    publishAll(store);
    EXPECT_EQ(answer("02 00 00 00 03"), "82 02");
    EXPECT_EQ(answer("04 00 04 00 04"), "84 02");
    EXPECT_EQ(answer("03 FF FF 00 01"), "83 02");
    EXPECT_EQ(answer("03 40 00 00 02"), "83 02");
}

TEST_F(ModbusReading, HasNoCoilForAnInput) {
    publishAll(store);
    EXPECT_EQ(answer("01 00 00 00 02"), "81 02");
    EXPECT_EQ(answer("01 00 01 00 01"), "01 01 01");
}

TEST_F(ModbusReading, CutsNoValueInTwo) {
    publishAll(store);
    EXPECT_EQ(answer("03 00 02 00 01"), "83 02");
    EXPECT_EQ(answer("03 00 03 00 01"), "83 02");
    EXPECT_EQ(answer("03 00 01 00 03"), "83 02");
    EXPECT_EQ(answer("03 00 00 00 03"), "83 02");
}

TEST_F(ModbusReading, GivesTheLastValueAndItsQualityBitWhereThatIsWanted) {
    settings.quality = ModbusSettings::Quality::Bits;
    publishAll(store);
    publish(store, 7, 3, -2, PointQuality::Bad); // LEVEL
    publish(store, 7, 0, 1, PointQuality::Bad);  // READY
    EXPECT_EQ(answer("04 00 00 00 06"), "04 0C 3F C0 00 00 FF FF FF FE 41 45 70 A4");
    EXPECT_EQ(answer("02 80 00 00 06"), "02 01 33"); // FLOW and DEPTH are good
    EXPECT_EQ(answer("02 00 00 00 02"), "02 01 03");
    EXPECT_EQ(answer("02 40 00 00 02"), "02 01 02"); // RUN is good
    EXPECT_EQ(answer("02 40 02 00 01"), "82 02");
    EXPECT_EQ(answer("01 40 01 00 01"), "81 02"); // they are no coils
}

TEST_F(ModbusReading, NeverReadIsNeverGoodInTheQualityBits) {
    settings.quality = ModbusSettings::Quality::Bits;
    EXPECT_EQ(answer("04 00 02 00 02"), "04 04 00 00 00 00");
    EXPECT_EQ(answer("02 80 02 00 02"), "02 01 00");
}

TEST_F(ModbusReading, KnowsTheUnitsOfTheMapAlone) {
    settings.units = ModbusSettings::Units::Rtu;
    publishAll(store);
    EXPECT_EQ(answer("03 00 00 00 02", 2), "03 04 00 01 11 70");
    EXPECT_EQ(answer("03 00 00 00 02", 3), "83 0A");
    EXPECT_EQ(answer("03 00 00 00 02", 0), "83 0A");
}

TEST(ModbusReadingFarApart, FindsEachPointsOwnState) {
    host::Site site = modbusSite();
    std::vector<host::Point>& points = site.channels[0].rtus[0].points;
    const host::Point level = points[3];
    points.assign(10'000, level);
    for (unsigned i = 0; i < points.size(); ++i)
        points[i].id = i;
    points.front().modbus = 100;
    points.back().modbus = 102;
    ModbusSettings settings;
    settings.points = ModbusSettings::Points::Listed;
    host::Findings findings;
    const host::ModbusMap map(site, settings, findings);
    host::ValueStore store(site);
    publish(store, 7, 0, 5);
    publish(store, 7, 9'999, 6);
    host::ModbusReader reader(map, settings, store);
    const host::ModbusPdu pdu = bytes("03 00 64 00 04");
    EXPECT_EQ(text(reader.answer(1, pdu, std::get<host::ModbusRead>(host::parseModbusRequest(pdu)))),
              "03 08 00 00 00 05 00 00 00 06");
}
