#include "SerialExchangeTest.h"

TEST_F(SerialExchangeTest, StartsInBreakModeWithTenMilliseconds) {
    EXPECT_EQ(driver->transmitMode, 1);
    EXPECT_EQ(driver->breakDelay, 10);
}

TEST_F(SerialExchangeTest, TheCheckAndTheReservedHookAgree) {
    EXPECT_EQ(driver->checkResponse({}, {}, request, {}), 0u);
    EXPECT_EQ(driver->reservedHook(), 0u);
}

TEST_F(SerialExchangeTest, BuildingClearsTheFrameFirst) {
    driver->transmitMode = breakMode;
    frame = "left over";
    driver->buildReadFrame(frame, {2, 8, 100, {}}, 1);
    EXPECT_EQ(toHex(frame), "01 02 08 00 64 C2 BA");
    driver->buildWriteFrame(frame, {13, 0, 32, hex("00")}, 5);
    EXPECT_EQ(toHex(frame), "05 0D 03 00 20 00 00 5F F0");
}

TEST_F(SerialExchangeTest, FramesFollowTheTransmitMode) {
    driver->transmitMode = dataMode;
    driver->buildReadFrame(frame, {2, 8, 100, {}}, 1);
    EXPECT_EQ(toHex(frame), "B5 00 01 02 08 00 64 49 69");
    driver->transmitMode = otherMode;
    driver->buildReadFrame(frame, {2, 8, 100, {}}, 1);
    EXPECT_EQ(toHex(frame), "01 02 08 00 64 C2 BA");
}

TEST_F(SerialExchangeTest, NineFlagsInBreakModeAwaitTwoDataAndTwoChecksumBytes) {
    const QByteArray answer = withChecksum(hex("05 01"));
    link->answer(answer);
    EXPECT_EQ(readFlags(breakMode), SBusSuccess);
    EXPECT_EQ(toHex(link->sent.value(0)), toHex(withChecksum(hex("05 02 08 00 64"))));
    EXPECT_TRUE(link->calls.value(1).startsWith("receive 4 ")) << link->calls.value(1);
    EXPECT_EQ(toHex(response), toHex(answer));
}

TEST_F(SerialExchangeTest, NineFlagsInDataModeAwaitSixBytesAndLeaveWithoutTheirStart) {
    const QByteArray answer = withChecksum(hex("B5 01 05 01"));
    link->answer(answer);
    EXPECT_EQ(readFlags(dataMode), SBusSuccess);
    EXPECT_EQ(toHex(link->sent.value(0)), toHex(withChecksum(hex("B5 00 05 02 08 00 64"))));
    EXPECT_TRUE(link->calls.value(1).startsWith("receive 6 ")) << link->calls.value(1);
    EXPECT_EQ(toHex(response), toHex(answer.mid(2)));
}

TEST_F(SerialExchangeTest, AReadInAnyOtherModeIsAnsweredAsInBreakMode) {
    link->answer(withChecksum(hex("05 01")));
    EXPECT_EQ(readFlags(otherMode), SBusSuccess);
    EXPECT_TRUE(link->calls.value(1).startsWith("receive 4 ")) << link->calls.value(1);
    expectConnected(true, true);
}

TEST_F(SerialExchangeTest, ATelegramMayTakeFiveSecondsToGoOut) {
    link->answer(withChecksum(hex("05 01")));
    readFlags(breakMode);
    EXPECT_EQ(link->calls.value(0), "send 5000");
    EXPECT_EQ(link->sent.size(), 1);
}

TEST_F(SerialExchangeTest, AnAnswerInPiecesIsPutTogether) {
    const QByteArray answer = withChecksum(hex("B5 01 05 01"));
    for (const char byte : answer)
        link->answer(QByteArray(1, byte));
    EXPECT_EQ(readFlags(dataMode), SBusSuccess);
    EXPECT_EQ(toHex(response), toHex(answer.mid(2)));
}

TEST_F(SerialExchangeTest, AnAnswerFullOfSynchronisationBytesIsTakenAsItIs) {
    const QByteArray answer = withChecksum(hex("B5 01 B5 B5 B5 B5"));
    link->answer(answer);
    driver->transmitMode = dataMode;
    EXPECT_EQ(read({6, 0, 0xB5B5, {}}, 4), SBusSuccess);
    EXPECT_EQ(toHex(response), toHex(answer.mid(2)));
}

TEST_F(SerialExchangeTest, AGoodAnswerConnectsTheRtuAndIsTraced) {
    rtu->SetConnect(false, false);
    const QByteArray answer = withChecksum(hex("B5 01 05 01"));
    link->answer(answer);
    EXPECT_EQ(readFlags(dataMode), SBusSuccess);
    expectConnected(true, true);
    EXPECT_EQ(
        trace(),
        (QStringList{"5+<< Send frame ",
                     "5-" + QString::fromLatin1(toHex(withChecksum(hex("B5 00 05 02 08 00 64")))) + ' '} +
         receivedFrame(answer)));
}

TEST_F(SerialExchangeTest, AFailedSendIsAChannelErrorAndIsNotTraced) {
    link->failNextSend();
    EXPECT_EQ(readFlags(breakMode), SBusChannelError);
    expectConnected(false, false);
    EXPECT_TRUE(trace().isEmpty());
    EXPECT_EQ(link->calls, QStringList{"send 5000"});
}

TEST_F(SerialExchangeTest, AFailedReceiveIsAChannelErrorAndNoAnswerIsTraced) {
    for (const int mode : {dataMode, breakMode, otherMode}) {
        connect(true);
        link->failNextReceive();
        EXPECT_EQ(readFlags(mode), SBusChannelError) << mode;
        expectConnected(false, false);
    }
    EXPECT_TRUE(traceOfAnswer().isEmpty());
}

TEST_F(SerialExchangeTest, ASilentStationIsATimeOutAndTheChannelStaysUp) {
    useTimeOut(shortTimeOut);
    EXPECT_EQ(readFlags(breakMode), SBusTimeOut);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(QByteArray(4, '\0')));
}

TEST_F(SerialExchangeTest, ASilentStationInDataModeIsTracedAsTheWholeZeroBuffer) {
    useTimeOut(shortTimeOut);
    EXPECT_EQ(readFlags(dataMode), SBusTimeOut);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(QByteArray(6, '\0')));
}

TEST_F(SerialExchangeTest, ASilentStationIsATimeOutEverySingleTime) {
    useTimeOut(1);
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(readFlags(breakMode), SBusTimeOut) << i;
        ASSERT_TRUE(channel.IsConnect()) << i;
    }
}

TEST_F(SerialExchangeTest, AShortAnswerIsATimeOutThatTakesTheChannelDown) {
    link->answer(hex("05 01"));
    EXPECT_EQ(readFlags(breakMode), SBusTimeOut);
    expectConnected(false, false);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(hex("05 01 00 00")));
}

TEST_F(SerialExchangeTest, NothingReceivedBeforeTheTimeOutCountsAsAShortAnswer) {
    link->interrupt();
    EXPECT_EQ(readFlags(breakMode), SBusTimeOut);
    expectConnected(false, false);
    EXPECT_EQ(traceOfAnswer(), receivedFrame(QByteArray(4, '\0')));
}

TEST_F(SerialExchangeTest, ANegativeAcknowledgeToARegisterReadIsAShortAnswer) {
    driver->transmitMode = dataMode;
    link->answer(hex("B5 02 00 01 33 D5"));
    EXPECT_EQ(read({6, 0, 10, {}}, 4), SBusTimeOut);
    expectConnected(false, false);
}

TEST_F(SerialExchangeTest, AReadRefusedInDataModeIsANakError) {
    for (const bool connected : {true, false}) {
        connect(connected);
        log.clear();
        link->answer(hex("B5 02 00 01 33 D5"));
        link->answer(hex("FF"));
        EXPECT_EQ(readFlags(dataMode), SBusBadData);
        expectConnected(connected, connected);
        EXPECT_EQ(traceOfAnswer(), receivedFrame(hex("B5 02 00 01 33 D5")) + QStringList{"2-Nak Error"});
    }
}

TEST_F(SerialExchangeTest, AnAttributeOf2IsANakErrorWhateverTheFirstByteIs) {
    link->answer(withChecksum(hex("00 02 05 01")));
    link->answer(hex("FF"));
    EXPECT_EQ(readFlags(dataMode), SBusBadData);
    EXPECT_EQ(traceOfAnswer().value(2), "2-Nak Error");
}

TEST_F(SerialExchangeTest, AReadAnswerWithAWrongStartIsAFrameError) {
    for (const char* start : {"B4 01", "B5 00", "B5 03"}) {
        connect(true);
        log.clear();
        const QByteArray answer = withChecksum(hex(start) + hex("05 01"));
        link->answer(answer);
        link->answer(hex("FF"));
        EXPECT_EQ(readFlags(dataMode), SBusBadData) << start;
        expectConnected(true, true);
        EXPECT_EQ(traceOfAnswer(), receivedFrame(answer) + QStringList{"2-Frame Error"});
    }
}

TEST_F(SerialExchangeTest, AfterAWrongStartTheLineIsDrainedForAMillisecond) {
    link->answer(withChecksum(hex("B4 01 05 01")));
    link->answer(hex("FF"));
    readFlags(dataMode);
    EXPECT_EQ(drains(), QStringList{"receive 4096 1"});
    link->calls.clear();
    link->answer(hex("B5 02 00 01 33 D5"));
    link->answer(hex("FF"));
    readFlags(dataMode);
    EXPECT_EQ(drains(), QStringList{"receive 4096 1"});
}

TEST_F(SerialExchangeTest, AReadAnswerWithAWrongChecksumIsACrcErrorInEveryMode) {
    for (const int mode : {dataMode, breakMode, otherMode})
        for (const bool connected : {true, false}) {
            connect(connected);
            log.clear();
            const QByteArray answer = withWrongChecksum(hex(mode == dataMode ? "B5 01 05 01" : "05 01"));
            link->answer(answer);
            link->answer(hex("FF"));
            EXPECT_EQ(readFlags(mode), SBusBadData) << mode;
            expectConnected(connected, connected);
            EXPECT_EQ(traceOfAnswer(), receivedFrame(answer) + QStringList{"2-CRC Error"});
        }
}

TEST_F(SerialExchangeTest, AfterAWrongChecksumTheLineIsDrainedForFiveSeconds) {
    link->answer(withWrongChecksum(hex("05 01")));
    link->answer(hex("FF"));
    readFlags(breakMode);
    EXPECT_EQ(drains(), QStringList{"receive 4096 5000"});
}

TEST_F(SerialExchangeTest, WhatIsDrainedIsNeitherTracedNorPartOfTheResponse) {
    link->answer(withWrongChecksum(hex("05 01")));
    link->answer(QByteArray(100, '\x77'));
    readFlags(breakMode);
    EXPECT_EQ(traceOfAnswer().filter("77"), QStringList{});
    EXPECT_FALSE(response.contains('\x77'));
}

TEST_F(SerialExchangeTest, AFailedDrainChangesNothing) {
    link->answer(withWrongChecksum(hex("05 01")));
    link->failNextReceive();
    EXPECT_EQ(readFlags(breakMode), SBusBadData);
    expectConnected(true, true);
}

TEST_F(SerialExchangeTest, ALongAnswerOfManyRegistersIsTracedInLinesOfEighteen) {
    driver->transmitMode = dataMode;
    const QByteArray answer = withChecksum(hex("B5 01") + QByteArray(32, '\0'));
    link->answer(answer);
    EXPECT_EQ(read({6, 7, 0, {}}, 32), SBusSuccess);
    EXPECT_EQ(response.size(), 34);
    EXPECT_EQ(traceOfAnswer(),
              (QStringList{"4+>> Receive frame ", "4-" + QString::fromLatin1(toHex(answer.left(18))) + ' ',
                           "4-" + QString::fromLatin1(toHex(answer.mid(18))) + ' '}));
}

TEST_F(SerialExchangeTest, AWholePollReachesThePublisher) {
    driver->transmitMode = dataMode;
    link->answer(withChecksum(hex("B5 01 FF FF FF FE 00 00 01 00")));
    request.items = {{6, 1, 10, {}}};
    driver->queueRequest(request);
    driver->processNextRequest();
    EXPECT_EQ(rtu->handedOver, QStringList{"analog R10: -2 256"});
    EXPECT_EQ(log.texts(LogLine::Route::All), QStringList{"Request result : Success"});
}

TEST_F(SerialExchangeTest, AWholePollThatFailsHandsOverNothing) {
    driver->transmitMode = dataMode;
    link->answer(withWrongChecksum(hex("B5 01 FF FF FF FE 00 00 01 00")));
    link->answer(hex("FF"));
    request.items = {{6, 1, 10, {}}};
    driver->queueRequest(request);
    driver->processNextRequest();
    EXPECT_TRUE(rtu->handedOver.isEmpty());
    EXPECT_EQ(log.texts(LogLine::Route::All), QStringList{"Request result : Bad Data"});
}

// A line's driver over a link of the other kind.
class SerialOverDatagrams : public ExchangeTest<SBusSerialDriver> {
protected:
    SerialOverDatagrams() : ExchangeTest(std::make_unique<ScriptedLink>(CLink::udpKind)) {}
};

TEST_F(SerialOverDatagrams, ExchangesInBreakModeWithoutABreak) {
    driver->transmitMode = 1;
    link->answer(withChecksum(hex("05 00")));
    EXPECT_EQ(read({2, 8, 100, {}}, 2), SBusSuccess);
    EXPECT_EQ(link->sent, QList<QByteArray>{withChecksum(hex("05 02 08 00 64"))});
}
