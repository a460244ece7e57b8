#include "PduText.h"
#include "services/modbus/ModbusRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::CoilWrite;
using host::ModbusFault;
using host::ModbusRead;
using host::parseModbusRequest;
using host::RegisterWrite;
using testing::ElementsAre;

namespace {

std::string readText(const char* request) {
    const host::ModbusRequest parsed = parseModbusRequest(bytes(request));
    const auto* const read = std::get_if<ModbusRead>(&parsed);
    if (read == nullptr)
        return "fault " + std::to_string(static_cast<int>(std::get<ModbusFault>(parsed)));
    const char* const tables[] = {"coils", "inputs", "holding", "input registers"};
    return tables[static_cast<int>(read->table)] + std::string(" ") + std::to_string(read->first) + " x " +
           std::to_string(read->count);
}

ModbusFault faultOf(const host::ModbusPdu& request) {
    return std::get<ModbusFault>(parseModbusRequest(request));
}
ModbusFault faultOf(const char* request) {
    return faultOf(bytes(request));
}

// Function 15 or 16 for so many values, with all their bytes.
host::ModbusPdu listWrite(std::uint8_t function, unsigned count, std::size_t size) {
    host::ModbusPdu pdu = {function,
                           0,
                           0,
                           static_cast<std::uint8_t>(count >> 8),
                           static_cast<std::uint8_t>(count),
                           static_cast<std::uint8_t>(size)};
    pdu.resize(6 + size);
    return pdu;
}

} // namespace

TEST(ModbusRequest, ReadsFromOneOfFourTables) {
    EXPECT_EQ(readText("01 00 13 00 25"), "coils 19 x 37");
    EXPECT_EQ(readText("02 00 C4 00 16"), "inputs 196 x 22");
    EXPECT_EQ(readText("03 00 6B 00 03"), "holding 107 x 3");
    EXPECT_EQ(readText("04 00 08 00 01"), "input registers 8 x 1");
}

TEST(ModbusRequest, ReadsAtMost2000BitsOr125Registers) {
    EXPECT_EQ(readText("01 00 00 07 D0"), "coils 0 x 2000");
    EXPECT_EQ(readText("01 00 00 07 D1"), "fault 3");
    EXPECT_EQ(readText("02 00 00 07 D1"), "fault 3");
    EXPECT_EQ(readText("03 00 00 00 7D"), "holding 0 x 125");
    EXPECT_EQ(readText("03 00 00 00 7E"), "fault 3");
    EXPECT_EQ(readText("04 00 00 00 00"), "fault 3");
}

TEST(ModbusRequest, StaysWithinTheTable) {
    EXPECT_EQ(readText("03 FF FF 00 01"), "holding 65535 x 1");
    EXPECT_EQ(readText("03 FF FF 00 02"), "fault 2");
    EXPECT_EQ(faultOf("10 FF FF 00 02 04 00 00 00 00"), ModbusFault::IllegalAddress);
    EXPECT_EQ(faultOf("0F FF FF 00 02 01 03"), ModbusFault::IllegalAddress);
}

TEST(ModbusRequest, SwitchesACoilByTwoValuesAlone) {
    const auto on = std::get<CoilWrite>(parseModbusRequest(bytes("05 00 AC FF 00")));
    EXPECT_EQ(on.first, 172U);
    EXPECT_THAT(on.values, ElementsAre(true));
    EXPECT_THAT(std::get<CoilWrite>(parseModbusRequest(bytes("05 00 AC 00 00"))).values, ElementsAre(false));
    EXPECT_EQ(faultOf("05 00 AC 00 01"), ModbusFault::IllegalValue);
    EXPECT_EQ(faultOf("05 00 AC FF FF"), ModbusFault::IllegalValue);
}

TEST(ModbusRequest, WritesCoilsFromTheLowestBitOn) {
    const auto write = std::get<CoilWrite>(parseModbusRequest(bytes("0F 00 13 00 0A 02 CD 01")));
    EXPECT_EQ(write.first, 19U);
    EXPECT_THAT(write.values, ElementsAre(true, false, true, true, false, false, true, true, true, false));
}

TEST(ModbusRequest, WritesRegisters) {
    const auto one = std::get<RegisterWrite>(parseModbusRequest(bytes("06 00 01 12 03")));
    EXPECT_EQ(one.first, 1U);
    EXPECT_THAT(one.values, ElementsAre(0x1203));
    const auto two = std::get<RegisterWrite>(parseModbusRequest(bytes("10 00 01 00 02 04 00 0A 01 02")));
    EXPECT_EQ(two.first, 1U);
    EXPECT_THAT(two.values, ElementsAre(0x000A, 0x0102));
}

TEST(ModbusRequest, WritesAtMost1968CoilsOr123Registers) {
    EXPECT_TRUE(std::holds_alternative<CoilWrite>(parseModbusRequest(listWrite(15, 1'968, 246))));
    EXPECT_EQ(faultOf(listWrite(15, 1'969, 247)), ModbusFault::IllegalValue);
    EXPECT_TRUE(std::holds_alternative<RegisterWrite>(parseModbusRequest(listWrite(16, 123, 246))));
    EXPECT_EQ(faultOf(listWrite(16, 124, 248)), ModbusFault::IllegalValue);
    EXPECT_EQ(faultOf(listWrite(16, 0, 0)), ModbusFault::IllegalValue);
}

TEST(ModbusRequest, HasTheLengthThatItsFunctionSays) {
    for (const char* const request :
         {"01", "03 00 00 00", "03 00 00 00 02 00", "05 00 00 FF", "06 00 00 00 00 00", "0F 00 00 00 01",
          "0F 00 00 00 01 01", "0F 00 00 00 09 01 FF", "10 00 00 00 02 04 00 00 00",
          "10 00 00 00 02 02 00 00", "10 00 00 00 02 04 00 00 00 00 00"})
        EXPECT_EQ(faultOf(request), ModbusFault::IllegalValue) << request;
}

TEST(ModbusRequest, HasAFunctionThatIsThere) {
    for (const char* const request : {"00", "07", "16 00 04 00 F2 00 25", "17", "2B 0E 01 00", "80", "83 02"})
        EXPECT_EQ(faultOf(request), ModbusFault::IllegalFunction) << request;
}

TEST(ModbusRequest, IsAnsweredWithItsFunction) {
    EXPECT_EQ(text(host::bitAnswer(bytes("01 00 13 00 0A"),
                                   {true, false, true, true, false, false, true, true, true, false})),
              "01 02 CD 01");
    EXPECT_EQ(text(host::registerAnswer(bytes("03 00 6B 00 02"), {0x022B, 0x0064})), "03 04 02 2B 00 64");
    EXPECT_EQ(text(host::writeAnswer(bytes("05 00 AC FF 00"))), "05 00 AC FF 00");
    EXPECT_EQ(text(host::writeAnswer(bytes("10 00 01 00 02 04 00 0A 01 02"))), "10 00 01 00 02");
    EXPECT_EQ(text(host::faultAnswer(bytes("10 00 01 00 02 04 00 0A 01 02"), ModbusFault::TargetSilent)),
              "90 0B");
}
