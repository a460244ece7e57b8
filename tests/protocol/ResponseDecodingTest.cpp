#include "EngineTest.h"

namespace {

class ResponseDecodingTest : public EngineTest {
protected:
    // What the RTU is handed when `item` is answered with `payload` and a checksum of FF FF.
    QStringList handedOver(const SBusRequestItem& item, const char* payload) {
        rtu->handedOver.clear();
        rtu->allValues.clear();
        protocol->answer(hex(payload) + hex("FF FF"));
        SBusRequest poll = request("poll", {item});
        protocol->executeRequest(poll);
        return rtu->handedOver;
    }
};

} // namespace

TEST_F(ResponseDecodingTest, EachBitReadIsHandedOverUnderItsMedia) {
    EXPECT_EQ(handedOver({2, 2, 100, {}}, "05"), QStringList{"status F100: 1 0 1"});
    EXPECT_EQ(handedOver({3, 2, 10, {}}, "05"), QStringList{"status I10: 1 0 1"});
    EXPECT_EQ(handedOver({5, 2, 32, {}}, "05"), QStringList{"status O32: 1 0 1"});
}

TEST_F(ResponseDecodingTest, EachWordReadIsHandedOverUnderItsMedia) {
    EXPECT_EQ(handedOver({0, 0, 20, {}}, "00 00 00 07"), QStringList{"analog C20: 7"});
    EXPECT_EQ(handedOver({6, 0, 200, {}}, "00 00 00 07"), QStringList{"analog R200: 7"});
    EXPECT_EQ(handedOver({7, 0, 300, {}}, "00 00 00 07"), QStringList{"analog T300: 7"});
}

TEST_F(ResponseDecodingTest, TenInputsOfTwoBytes) {
    EXPECT_EQ(handedOver({3, 9, 0, {}}, "05 02"), QStringList{"status I0: 1 0 1 0 0 0 0 0 0 1"});
}

TEST_F(ResponseDecodingTest, ANegativeRegister) {
    EXPECT_EQ(handedOver({6, 0, 0, {}}, "FF FF FF FE"), QStringList{"analog R0: -2"});
}

TEST_F(ResponseDecodingTest, ARegisterOf256) {
    EXPECT_EQ(handedOver({6, 0, 0, {}}, "00 00 01 00"), QStringList{"analog R0: 256"});
}

TEST_F(ResponseDecodingTest, CountZeroIsExactlyOneValue) {
    EXPECT_EQ(handedOver({2, 0, 5, {}}, "FF"), QStringList{"status F5: 1"});
    EXPECT_EQ(handedOver({7, 0, 5, {}}, "00 00 00 01"), QStringList{"analog T5: 1"});
}

TEST_F(ResponseDecodingTest, WordsAreHandedOverAsReceived) {
    EXPECT_EQ(handedOver({6, 2, 0, {}}, "80 00 00 41 7F FF FF FF 80 00 00 00"),
              QStringList{"analog R0: -2147483583 2147483647 -2147483648"});
}

TEST_F(ResponseDecodingTest, TheFirstAddressIsTheItemsOwnBeyond16BitsToo) {
    EXPECT_EQ(handedOver({6, 0, 99999, {}}, "00 00 00 01"), QStringList{"analog R99999: 1"});
}

TEST_F(ResponseDecodingTest, EachItemIsHandedOverForItself) {
    protocol->answer(hex("00 00 00 01 FF FF"));
    protocol->answer(hex("01 FF FF"));
    SBusRequest poll = request("poll", {{6, 0, 10, {}}, {2, 0, 20, {}}});
    protocol->executeRequest(poll);
    EXPECT_EQ(rtu->handedOver, (QStringList{"analog R10: 1", "status F20: 1"}));
}

TEST_F(ResponseDecodingTest, AShortPayloadHandsOverOnlyTheElementsItCovers) {
    EXPECT_EQ(handedOver({6, 2, 10, {}}, "00 00 00 01 00 00 00 02"), QStringList{"analog R10: 1 2"});
    EXPECT_EQ(handedOver({6, 1, 10, {}}, "00 00 00 01 00 00 00"), QStringList{"analog R10: 1"});
    EXPECT_EQ(handedOver({2, 9, 10, {}}, "FF"), QStringList{"status F10: 1 1 1 1 1 1 1 1"});
}

TEST_F(ResponseDecodingTest, AnEmptyPayloadHandsOverNoValue) {
    handedOver({6, 0, 10, {}}, "");
    EXPECT_TRUE(rtu->allValues.isEmpty());
    handedOver({2, 0, 10, {}}, "");
    EXPECT_TRUE(rtu->allValues.isEmpty());
}

TEST_F(ResponseDecodingTest, ChecksumBytesAreNeverHandedOver) {
    // Two payload bytes and the two of the checksum would make up a word.
    handedOver({6, 0, 10, {}}, "00 01");
    EXPECT_TRUE(rtu->allValues.isEmpty());
}

TEST_F(ResponseDecodingTest, WritesHandOverNothing) {
    SBusRequest command = request("command", {{14, 0, 10, hex("00 00 00 07")}, {11, 0, 10, hex("01")}});
    protocol->executeRequest(command);
    EXPECT_TRUE(rtu->handedOver.isEmpty());
}

TEST_F(ResponseDecodingTest, TheTableIsFreeWhileValuesAreHandedOver) {
    rtu->duringHandOver = [this] { protocol->queueRequest(request("next")); };
    protocol->queueRequest(request("poll", {{6, 0, 10, {}}}));
    expectNoDeadlock([this] { runAll(); });
    EXPECT_EQ(protocol->exchanged, (QStringList{"poll", "next"}));
}
