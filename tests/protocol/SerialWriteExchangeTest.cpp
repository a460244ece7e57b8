#include "SerialExchangeTest.h"

namespace {

using SerialWriteExchangeTest = SerialExchangeTest;

} // namespace

TEST_F(SerialWriteExchangeTest, InBreakModeTheAcknowledgeByteIsGood) {
    rtu->SetConnect(false, false);
    link->answer(hex("06"));
    EXPECT_EQ(writeOutput(breakMode), SBusSuccess);
    EXPECT_TRUE(link->calls.value(1).startsWith("receive 1 ")) << link->calls.value(1);
    expectConnected(true, true);
    EXPECT_EQ(trace(), (QStringList{"5+<< Send frame ", "5-05 0D 03 00 20 00 00 5F F0 ",
                                    "4+>> Receive frame ", "4-06 "}));
}

TEST_F(SerialWriteExchangeTest, InBreakModeAnyOtherByteIsAControlError) {
    for (const char* byte : {"15", "00", "86"})
        for (const bool connected : {true, false}) {
            connect(connected);
            log.clear();
            link->answer(hex(byte));
            EXPECT_EQ(writeOutput(breakMode), SBusBadData) << byte;
            expectConnected(connected, connected);
            EXPECT_EQ(traceOfAnswer(), receivedFrame(hex(byte)) + QStringList{"2-Control Error"});
        }
    EXPECT_EQ(drains(), QStringList{});
}

TEST_F(SerialWriteExchangeTest, InDataModeAPositiveAcknowledgeIsGood) {
    rtu->SetConnect(false, false);
    link->answer(hex("B5 02 00 00 23 F4"));
    EXPECT_EQ(writeOutput(dataMode), SBusSuccess);
    EXPECT_TRUE(link->calls.value(1).startsWith("receive 6 ")) << link->calls.value(1);
    EXPECT_EQ(toHex(link->sent.value(0)), "B5 00 05 0D 03 00 20 00 00 63 8C");
    expectConnected(true, true);
}

TEST_F(SerialWriteExchangeTest, InDataModeANegativeAcknowledgeWithAValidChecksumIsASuccess) {
    rtu->SetConnect(false, false);
    link->answer(hex("B5 02 00 01 33 D5"));
    EXPECT_EQ(writeOutput(dataMode), SBusSuccess);
    expectConnected(true, true);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(hex("B5 02 00 01 33 D5")));
}

TEST_F(SerialWriteExchangeTest, InDataModeAWrongStartIsAFrameErrorThatStartsAnEntry) {
    for (const char* start : {"B5 01", "06 02", "B5 00"})
        for (const bool connected : {true, false}) {
            connect(connected);
            log.clear();
            const QByteArray answer = withChecksum(hex(start) + hex("00 00"));
            link->answer(answer);
            EXPECT_EQ(writeOutput(dataMode), SBusBadData) << start;
            expectConnected(connected, connected);
            EXPECT_EQ(traceOfAnswer(), receivedFrame(answer) + QStringList{"2+Frame Error"});
        }
}

TEST_F(SerialWriteExchangeTest, InDataModeAWrongChecksumIsACrcErrorThatStartsAnEntryAndIsNotDrained) {
    for (const bool connected : {true, false}) {
        connect(connected);
        log.clear();
        link->answer(hex("B5 02 00 00 23 F5"));
        EXPECT_EQ(writeOutput(dataMode), SBusBadData);
        expectConnected(connected, connected);
        EXPECT_EQ(traceOfAnswer(), receivedFrame(hex("B5 02 00 00 23 F5")) + QStringList{"2+CRC Error"});
    }
    EXPECT_EQ(drains(), QStringList{});
}

TEST_F(SerialWriteExchangeTest, InAnyOtherModeAWriteSucceedsRightAfterSendingWithoutWaiting) {
    for (const bool connected : {true, false}) {
        connect(connected);
        log.clear();
        link->calls.clear();
        EXPECT_EQ(writeOutput(otherMode), SBusSuccess);
        EXPECT_EQ(link->calls, QStringList{"send 5000"});
        expectConnected(connected, connected);
        EXPECT_EQ(trace(), (QStringList{"5+<< Send frame ", "5-05 0D 03 00 20 00 00 5F F0 "}));
    }
}

TEST_F(SerialWriteExchangeTest, AFailedSendIsAChannelErrorInEveryMode) {
    for (const int mode : {dataMode, breakMode, otherMode}) {
        connect(true);
        link->failNextSend();
        EXPECT_EQ(writeOutput(mode), SBusChannelError) << mode;
        expectConnected(false, false);
    }
    EXPECT_TRUE(trace().isEmpty());
}

TEST_F(SerialWriteExchangeTest, AFailedReceiveIsAChannelError) {
    for (const int mode : {dataMode, breakMode}) {
        connect(true);
        link->failNextReceive();
        EXPECT_EQ(writeOutput(mode), SBusChannelError) << mode;
        expectConnected(false, false);
    }
    EXPECT_TRUE(traceOfAnswer().isEmpty());
}

TEST_F(SerialWriteExchangeTest, ASilentStationIsATimeOutAndTheChannelStaysUp) {
    useTimeOut(shortTimeOut);
    EXPECT_EQ(writeOutput(breakMode), SBusTimeOut);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(hex("00")));
    log.clear();
    connect(true);
    EXPECT_EQ(writeOutput(dataMode), SBusTimeOut);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(QByteArray(6, '\0')));
}

TEST_F(SerialWriteExchangeTest, AShortAcknowledgeIsATimeOutThatTakesTheChannelDown) {
    link->answer(hex("B5 02 00"));
    EXPECT_EQ(writeOutput(dataMode), SBusTimeOut);
    expectConnected(false, false);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(hex("B5 02 00 00 00 00")));
}
