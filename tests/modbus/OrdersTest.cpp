#include "ModbusSite.h"
#include "PduText.h"
#include "services/modbus/ModbusOrders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Halvex::DriverErrorResult;
using host::CommandEnd;
using host::ModbusFault;
using host::ModbusOrders;
using testing::ElementsAre;
using testing::Pair;

namespace {

class ModbusWriting : public testing::Test {
protected:
    ModbusOrders orders(const char* request) {
        host::Findings findings;
        map = std::make_unique<host::ModbusMap>(site, host::ModbusSettings(), findings);
        const host::ModbusRequest parsed = host::parseModbusRequest(bytes(request));
        if (const auto* const coils = std::get_if<host::CoilWrite>(&parsed))
            return ordersOf(*map, 1, *coils);
        return ordersOf(*map, 1, std::get<host::RegisterWrite>(parsed),
                        host::ModbusSettings::WordOrder::HighFirst);
    }
    void expectFault(const char* request, ModbusFault fault) {
        const ModbusOrders refused = orders(request);
        EXPECT_EQ(refused.fault, fault) << request;
        EXPECT_TRUE(refused.commands.empty()) << request;
    }

    host::Site site = modbusSite();
    std::unique_ptr<host::ModbusMap> map;
};

} // namespace

TEST_F(ModbusWriting, SwitchesEachCoil) {
    site.channels[0].rtus[0].points[0].address = {'F', 3}; // READY can be switched, too
    const ModbusOrders two = orders("0F 00 00 00 02 01 02");
    EXPECT_FALSE(two.fault);
    ASSERT_EQ(two.commands.size(), 2U);
    EXPECT_EQ(two.commands[0].channelId, 4);
    EXPECT_EQ(two.commands[0].rtuId, 7);
    EXPECT_EQ(std::get<host::SwitchPoint>(two.commands[0].action).point, 1U);
    EXPECT_FALSE(std::get<host::SwitchPoint>(two.commands[0].action).on);
    EXPECT_EQ(std::get<host::SwitchPoint>(two.commands[1].action).point, 2U);
    EXPECT_TRUE(std::get<host::SwitchPoint>(two.commands[1].action).on);
}

TEST_F(ModbusWriting, SetsThePointsOfAnRtuByOneCommand) {
    const ModbusOrders all = orders("10 00 00 00 06 0C 3F C0 00 00 FF FF FF FE 41 45 70 A4");
    EXPECT_FALSE(all.fault);
    ASSERT_EQ(all.commands.size(), 1U);
    EXPECT_THAT(std::get<host::SetPoints>(all.commands[0].action).values,
                ElementsAre(Pair(3, 1.5), Pair(4, -2), Pair(5, 12.34)));
}

TEST_F(ModbusWriting, SetsThePointsOfTwoRtusByTwoCommands) {
    site.channels[0].rtus[1].points[1].modbus = 6; // COUNT, behind DEPTH
    const ModbusOrders two = orders("10 00 04 00 04 08 41 45 70 A4 00 00 00 07");
    ASSERT_EQ(two.commands.size(), 2U);
    EXPECT_EQ(two.commands[0].rtuId, 7);
    EXPECT_EQ(two.commands[1].rtuId, 8);
    EXPECT_THAT(std::get<host::SetPoints>(two.commands[1].action).values, ElementsAre(Pair(2, 7)));
}

TEST_F(ModbusWriting, SendsNothingOfARequestThatTouchesWhatCannotBeWritten) {
    expectFault("0F 00 00 00 02 01 03", ModbusFault::IllegalAddress); // READY is an input
    expectFault("05 00 02 FF 00", ModbusFault::IllegalAddress);
    expectFault("10 00 04 00 04 08 41 45 70 A4 00 00 00 07", ModbusFault::IllegalAddress);
}

TEST_F(ModbusWriting, WritesNoHalfOfAValue) {
    expectFault("06 00 02 00 07", ModbusFault::IllegalAddress);
    expectFault("06 00 03 00 07", ModbusFault::IllegalAddress);
    expectFault("10 00 03 00 02 04 00 00 00 07", ModbusFault::IllegalAddress);
    expectFault("10 00 02 00 03 06 00 00 00 07 00 00", ModbusFault::IllegalAddress);
}

TEST_F(ModbusWriting, RefusesValuesThatTheControllerCannotHold) {
    expectFault("10 03 E8 00 02 04 FF FF FF FF", ModbusFault::IllegalValue); // a counter below 0
    expectFault("10 00 00 00 02 04 7F C0 00 00", ModbusFault::IllegalValue); // NaN
    expectFault("10 00 04 00 02 04 3C 03 12 6F", ModbusFault::IllegalValue); // 0.008, between two steps
}

TEST_F(ModbusWriting, RefusesADisabledRtu) {
    site.channels[0].rtus[0].enabled = false;
    expectFault("05 00 01 FF 00", ModbusFault::PathUnavailable);
    expectFault("10 00 02 00 02 04 00 00 00 07", ModbusFault::PathUnavailable);
}

TEST_F(ModbusWriting, RefusesMoreCoilsThanItsBound) {
    host::Findings findings;
    const host::ModbusMap own(site, {}, findings);
    EXPECT_EQ(ordersOf(own, 1, host::CoilWrite{1, std::vector<bool>(host::mostCoilsAtOnce + 1)}).fault,
              ModbusFault::IllegalValue);
}

TEST(ModbusResult, IsAnExceptionForEachEndButSuccess) {
    const auto end = [](DriverErrorResult result, bool wasRefused = false) {
        CommandEnd one;
        one.result = result;
        one.wasRefused = wasRefused;
        return host::faultOf(one);
    };
    EXPECT_EQ(end(DriverErrorResult::Success), std::nullopt);
    EXPECT_EQ(end(DriverErrorResult::Success, true), ModbusFault::DeviceFailure);
    EXPECT_EQ(end(DriverErrorResult::BadData, true), ModbusFault::DeviceFailure);
    EXPECT_EQ(end(DriverErrorResult::TimeOut), ModbusFault::TargetSilent);
    EXPECT_EQ(end(DriverErrorResult::ChannelError), ModbusFault::PathUnavailable);
    EXPECT_EQ(end(DriverErrorResult::BadData), ModbusFault::DeviceFailure);
    EXPECT_EQ(end(DriverErrorResult::PointNotFound), ModbusFault::DeviceFailure);
}
