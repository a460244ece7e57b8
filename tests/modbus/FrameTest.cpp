#include "PduText.h"

#include <gtest/gtest.h>

using State = host::CutModbusFrame::State;

namespace {

host::CutModbusFrame cut(const char* text) {
    const std::vector<std::uint8_t> all = bytes(text);
    return host::cutModbusFrame(all.data(), all.size());
}

} // namespace

TEST(ModbusFrame, HasTransactionUnitAndRequest) {
    const host::CutModbusFrame one = cut("12 34 00 00 00 06 11 03 00 6B 00 03");
    EXPECT_EQ(one.state, State::Whole);
    EXPECT_EQ(one.size, 12U);
    EXPECT_EQ(one.frame.transaction, 0x1234);
    EXPECT_EQ(one.frame.unit, 0x11);
    EXPECT_EQ(text(one.frame.pdu), "03 00 6B 00 03");
}

TEST(ModbusFrame, EndsWhereItsLengthSays) {
    const host::CutModbusFrame one = cut("00 01 00 00 00 02 01 07 00 02 00 00");
    EXPECT_EQ(one.state, State::Whole);
    EXPECT_EQ(one.size, 8U);
    EXPECT_EQ(text(one.frame.pdu), "07");
}

TEST(ModbusFrame, IsIncompleteUntilItsLastByte) {
    const std::vector<std::uint8_t> all = bytes("00 01 00 00 00 06 01 03 00 00 00 02");
    for (std::size_t count = 0; count < all.size(); ++count)
        EXPECT_EQ(host::cutModbusFrame(all.data(), count).state, State::Incomplete) << count;
}

TEST(ModbusFrame, IsRubbishWithAnotherProtocolOrAnImpossibleLength) {
    EXPECT_EQ(cut("47 45 54 20 2F").state, State::Rubbish); // "GET /"
    EXPECT_EQ(cut("00 01 00 01").state, State::Rubbish);
    EXPECT_EQ(cut("00 01 00 00 00 01").state, State::Rubbish);
    EXPECT_EQ(cut("00 01 00 00 00 FF").state, State::Rubbish);
    EXPECT_EQ(cut("00 01 00 00 00 FE").state, State::Incomplete);
}

TEST(ModbusFrame, IsWrittenWithItsLength) {
    EXPECT_EQ(text(host::bytesOf({0x1234, 0x11, bytes("83 02")})), "12 34 00 00 00 03 11 83 02");
}
