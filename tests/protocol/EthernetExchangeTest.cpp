#include "EthernetExchangeTest.h"

TEST_F(EthernetExchangeTest, TheFirstRequestCarriesSequenceNumberZero) {
    driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    EXPECT_EQ(toHex(frame), "00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC");
}

TEST_F(EthernetExchangeTest, EveryRequestTakesTheNextNumberAndThe65536thIsTheLastBeforeZero) {
    for (unsigned number = 0; number < 65'536; ++number) {
        if (number % 2 == 0)
            driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
        else
            driver->buildWriteFrame(frame, {14, 0, 10, hex("00 00 00 01")}, 5);
        ASSERT_EQ(toHex(frame.mid(6, 2)), toHex(bigEndian16(number)));
    }
    driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    EXPECT_EQ(toHex(frame.mid(6, 2)), "00 00");
}

TEST_F(EthernetExchangeTest, TheSequenceNumberIsExpectedAcrossTheWrap) {
    for (unsigned number = 0; number < 65'536; ++number)
        driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    link->answer(registers(0));
    EXPECT_EQ(readRegisters(), SBusSuccess);
}

TEST_F(EthernetExchangeTest, TheClockTelegramIsDataAndChecksumAndTakesNoNumber) {
    driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    driver->buildWriteFrame(frame, {12, 0, 0, hex("01 02 03")}, 5);
    EXPECT_EQ(toHex(frame), "01 02 03 61 31");
    driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    EXPECT_EQ(toHex(frame.mid(6, 2)), "00 01");
}

TEST_F(EthernetExchangeTest, TheClockTelegramExpectsTheNumberThatTheNextRequestWillCarry) {
    driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    link->answer(acknowledged(1));
    EXPECT_EQ(write({12, 0, 0, hex("01 02 03")}), SBusSuccess);
}

TEST_F(EthernetExchangeTest, BuildingClearsTheFrameFirst) {
    frame = "left over";
    driver->buildReadFrame(frame, {6, 1, 10, {}}, 5);
    EXPECT_EQ(frame.size(), 16);
    driver->buildWriteFrame(frame, {11, 0, 100, hex("01")}, 5);
    EXPECT_EQ(frame.size(), 18);
}

TEST_F(EthernetExchangeTest, TheCheckAndTheReservedHookAgree) {
    EXPECT_EQ(driver->checkResponse({}, {}, request, {}), 0u);
    EXPECT_EQ(driver->reservedHook(), 0u);
}

TEST_F(EthernetExchangeTest, AGoodReadLeavesPayloadAndChecksumConnectsTheRtuAndIsTraced) {
    rtu->SetConnect(false, false);
    link->answer(registers());
    EXPECT_EQ(readRegisters(), SBusSuccess);
    EXPECT_EQ(toHex(response), toHex(registers().mid(9)));
    expectConnected(true, true);
    EXPECT_EQ(trace(),
              (QStringList{"5+<< Send frame ", "5-00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC "} +
               received(registers())));
    EXPECT_EQ(link->calls, (QStringList{"send 5000", "receive 1024 60000"}));
}

TEST_F(EthernetExchangeTest, TheCallersBufferSizeDoesNotMatter) {
    link->answer(registers());
    EXPECT_EQ(read({6, 1, 10, {}}, 500), SBusSuccess);
    EXPECT_EQ(toHex(response), toHex(registers().mid(9)));
}

TEST_F(EthernetExchangeTest, AGoodWriteConnectsTheRtu) {
    rtu->SetConnect(false, false);
    link->answer(acknowledged());
    EXPECT_EQ(writeRegister(), SBusSuccess);
    expectConnected(true, true);
    EXPECT_EQ(traceOfAnswer(), received(acknowledged()));
}

TEST_F(EthernetExchangeTest, AFailedSendIsAChannelErrorAndIsNotTraced) {
    link->failNextSend();
    EXPECT_EQ(readRegisters(), SBusChannelError);
    expectConnected(false, false);
    EXPECT_TRUE(trace().isEmpty());
    EXPECT_EQ(link->calls, QStringList{"send 5000"});
}

TEST_F(EthernetExchangeTest, AFailedReceiveIsAChannelErrorAndNoAnswerIsTraced) {
    link->failNextReceive();
    EXPECT_EQ(readRegisters(), SBusChannelError);
    expectConnected(false, false);
    EXPECT_TRUE(traceOfAnswer().isEmpty());
}

TEST_F(EthernetExchangeTest, ASilentControllerIsAChannelErrorAndNotATimeOut) {
    useTimeOut(shortTimeOut);
    EXPECT_EQ(readRegisters(), SBusChannelError);
    expectConnected(false, false);
    EXPECT_TRUE(traceOfAnswer().isEmpty());
    EXPECT_EQ(link->calls, (QStringList{"send 5000", "receive 1024 30"}));
}

TEST_F(EthernetExchangeTest, AnAnswerThatRepeatsThePreviousSequenceNumberIsRejected) {
    link->answer(registers(0));
    EXPECT_EQ(readRegisters(), SBusSuccess);
    log.clear();
    link->answer(registers(0));
    EXPECT_EQ(readRegisters(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), received(registers(0)) + QStringList{"2+Invaild Sequence"});
}

TEST_F(EthernetExchangeTest, AWriteAnsweredUnderAnotherSequenceNumberIsRejected) {
    link->answer(acknowledged(1));
    EXPECT_EQ(writeRegister(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), received(acknowledged(1)) + QStringList{"2+Invaild Sequence"});
}

TEST_F(EthernetExchangeTest, AReadRefusedGivesTheAcknowledgeCodeInDecimal) {
    link->answer(acknowledged(0, 0x0110));
    EXPECT_EQ(readRegisters(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer().last(), "2+Ack Error: 272");
}

TEST_F(EthernetExchangeTest, AReadAnsweredByAPositiveAcknowledgeLogsAckError2) {
    link->answer(acknowledged());
    EXPECT_EQ(readRegisters(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), received(acknowledged()) + QStringList{"2+Ack Error: 2"});
}

TEST_F(EthernetExchangeTest, AReadAnsweredUnderAnyOtherAttributeLogsTheAttribute) {
    const QByteArray answer = ethernetTelegram(0, 200, hex("00 00 00 07 FF FF FF FE"));
    link->answer(answer);
    EXPECT_EQ(readRegisters(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), received(answer) + QStringList{"2+Ack Error: 200"});
}

TEST_F(EthernetExchangeTest, AReadAnswerWithAWrongChecksumDisconnectsTheRtu) {
    link->answer(damaged(registers()));
    EXPECT_EQ(readRegisters(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), received(damaged(registers())) + QStringList{"2+CRC Error"});
}

TEST_F(EthernetExchangeTest, AWriteAnswerWithAWrongChecksumLeavesTheRtuAsItWas) {
    for (const bool connected : {true, false}) {
        rtu->SetConnect(connected, false);
        log.clear();
        const QByteArray answer = damaged(acknowledged(connected ? 0 : 1));
        link->answer(answer);
        EXPECT_EQ(writeRegister(), SBusBadData);
        expectConnected(connected, true);
        EXPECT_EQ(traceOfAnswer(), received(answer) + QStringList{"2+CRC Error"});
    }
}

TEST_F(EthernetExchangeTest, AWriteAnsweredWithDataLogsTheAttribute) {
    link->answer(registers());
    EXPECT_EQ(writeRegister(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer().last(), "2+Ack Error: 1");
}

TEST_F(EthernetExchangeTest, AWriteRefusedGivesTheAcknowledgeCodeInDecimal) {
    link->answer(acknowledged(0, 3));
    EXPECT_EQ(writeRegister(), SBusBadData);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer().last(), "2+Ack Error: 3");
}

TEST_F(EthernetExchangeTest, ReadAndWriteAnswersAreToldApartByTheCommandNotByTheirSize) {
    for (const quint32 command : {0u, 2u, 3u, 5u, 6u, 7u}) {
        const quint16 sequence = static_cast<quint16>(link->sent.size());
        link->answer(ethernetTelegram(sequence, dataResponse, hex("00 00 00 01")));
        EXPECT_EQ(read({command, 0, 0, {}}, 4), SBusSuccess) << command;
    }
    for (const quint32 command : {10u, 11u, 13u, 14u, 15u}) {
        const quint16 sequence = static_cast<quint16>(link->sent.size());
        link->answer(acknowledged(sequence));
        EXPECT_EQ(write({command, 0, 0, hex("01")}), SBusSuccess) << command;
    }
}

TEST_F(EthernetExchangeTest, AWholePollReachesThePublisher) {
    link->answer(registers());
    request.items = {{6, 1, 10, {}}};
    driver->queueRequest(request);
    driver->processNextRequest();
    EXPECT_EQ(rtu->handedOver, QStringList{"analog R10: 7 -2"});
    EXPECT_EQ(log.texts(LogLine::Route::All), QStringList{"Request result : Success"});
}

TEST_F(EthernetExchangeTest, ASilentControllerIsReportedAsAChannelError) {
    useTimeOut(shortTimeOut);
    request.items = {{6, 1, 10, {}}};
    driver->queueRequest(request);
    driver->processNextRequest();
    EXPECT_EQ(log.texts(LogLine::Route::All), QStringList{"Request result : Chennel Error"});
    EXPECT_EQ(rtu->GetRtuStatus().errors, 1u);
    EXPECT_EQ(rtu->GetRtuStatus().timeOuts, 0u);
}
