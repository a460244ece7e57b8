#include "EthernetExchangeTest.h"

#include <limits>

// What a datagram says of its length and what has really come.

namespace {

class EthernetLengthTest : public EthernetExchangeTest {
protected:
    // A whole poll of two registers, answered by one datagram after another.
    void poll(const QList<QByteArray>& datagrams) {
        for (const QByteArray& datagram : datagrams)
            link->answer(datagram);
        request.items = {{6, 1, 10, {}}};
        driver->queueRequest(request);
        driver->processNextRequest();
    }

    QStringList results() const { return log.texts(LogLine::Route::All); }
};

} // namespace

TEST_F(EthernetLengthTest, FewerThanFourBytesAreAChannelError) {
    for (int length = 1; length < 4; ++length) {
        connect(true);
        link->answer(registers().left(length));
        EXPECT_EQ(readRegisters(), SBusChannelError) << length;
        expectConnected(false, false);
    }
    EXPECT_TRUE(traceOfAnswer().isEmpty());
}

TEST_F(EthernetLengthTest, ATelegramInTwoPiecesIsPutTogether) {
    link->answer(registers().left(10));
    link->answer(registers().mid(10));
    EXPECT_EQ(readRegisters(), SBusSuccess);
    EXPECT_EQ(toHex(response), toHex(registers().mid(9)));
    EXPECT_EQ(link->calls, (QStringList{"send 5000", "receive 1024 60000", "receive 1014 60000"}));
    EXPECT_EQ(traceOfAnswer(), received(registers()));
}

TEST_F(EthernetLengthTest, ATelegramInThreePiecesIsAShortAnswer) {
    link->answer(registers().left(10));
    link->answer(registers().mid(10, 5));
    link->answer(registers().mid(15));
    EXPECT_EQ(readRegisters(), SBusTimeOut);
    expectConnected(false, false);
    EXPECT_EQ(link->calls.filter("receive").size(), 2);
    EXPECT_EQ(traceOfAnswer(), received(QByteArray(10, '\0')));
}

TEST_F(EthernetLengthTest, ARestThatNeverComesIsATimeOutAndTheChannelStaysUp) {
    useTimeOut(shortTimeOut);
    link->answer(registers().left(10));
    EXPECT_EQ(readRegisters(), SBusTimeOut);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer(), received(QByteArray(10, '\0')));
}

TEST_F(EthernetLengthTest, ARestOfAWriteAnswerThatNeverComesHasNoBufferToDump) {
    useTimeOut(shortTimeOut);
    link->answer(acknowledged().left(10));
    EXPECT_EQ(writeRegister(), SBusTimeOut);
    expectConnected(false, true);
    EXPECT_EQ(traceOfAnswer().filter("4-"), QStringList{});
}

TEST_F(EthernetLengthTest, ALinkThatFailsBeforeTheRestIsAChannelError) {
    link->answer(registers().left(10));
    link->failNextReceive();
    EXPECT_EQ(readRegisters(), SBusChannelError);
    expectConnected(false, false);
    EXPECT_TRUE(traceOfAnswer().isEmpty());
}

TEST_F(EthernetLengthTest, MoreThanTheLengthAfterTheSecondReceiveIsAShortAnswer) {
    link->answer(registers().left(10));
    link->answer(registers().mid(10) + hex("00"));
    EXPECT_EQ(readRegisters(), SBusTimeOut);
    expectConnected(false, false);
}

TEST_F(EthernetLengthTest, BytesBehindTheLengthOfTheFirstDatagramAreLeftOut) {
    link->answer(registers() + hex("DE AD BE EF"));
    EXPECT_EQ(readRegisters(), SBusSuccess);
    EXPECT_EQ(toHex(response), toHex(registers().mid(9)));
    EXPECT_EQ(traceOfAnswer(), received(registers()));
}

TEST_F(EthernetLengthTest, ATelegramOf1024BytesIsTheLongestThatCanBeReceived) {
    link->answer(ethernetTelegram(0, dataResponse, QByteArray(1013, '\x55')));
    EXPECT_EQ(read({6, 252, 0, {}}, 1012), SBusSuccess);
    EXPECT_EQ(response.size(), 1015);
    EXPECT_EQ(response.left(1013), QByteArray(1013, '\x55'));
}

TEST_F(EthernetLengthTest, ATelegramLongerThan1024BytesCannotBeReceived) {
    useTimeOut(shortTimeOut);
    const QByteArray tooLong = ethernetTelegram(0, dataResponse, QByteArray(1014, '\x55'));
    ASSERT_EQ(tooLong.size(), 1025);
    link->answer(tooLong);
    EXPECT_EQ(read({6, 252, 0, {}}, 1012), SBusTimeOut);
    EXPECT_FALSE(rtu->IsConnect());
}

TEST_F(EthernetLengthTest, ALengthBeyond1024IsNeverReadNorWrittenBeyondTheBuffer) {
    useTimeOut(shortTimeOut);
    for (const qint32 length : {1025, 4096, 0x00010000, 0x7FFFFFFF}) {
        const quint16 sequence = static_cast<quint16>(link->sent.size());
        link->answer(withChecksum(ethernetBytes(sequence, dataResponse, QByteArray(800, '\x55'), length)));
        link->answer(QByteArray(2000, '\x55'));
        EXPECT_EQ(readRegisters(), SBusTimeOut) << length;
        EXPECT_FALSE(rtu->IsConnect());
        // The second receive had the rest of the 1024 bytes and no more.
        EXPECT_TRUE(link->calls.last().startsWith("receive 213 ")) << link->calls.last();
    }
}

TEST_F(EthernetLengthTest, AFullBufferLeavesNoRoomForASecondDatagram) {
    useTimeOut(shortTimeOut);
    link->answer(ethernetBytes(0, dataResponse, QByteArray(1015, '\x55'), 2000));
    link->answer(QByteArray(976, '\x55'));
    EXPECT_EQ(readRegisters(), SBusTimeOut);
    EXPECT_FALSE(rtu->IsConnect());
    EXPECT_EQ(link->calls.filter("receive"), QStringList{"receive 1024 30"});
}

TEST_F(EthernetLengthTest, TheLastByteOfTheLongestTelegramMayComeInASecondDatagram) {
    const QByteArray longest = ethernetTelegram(0, dataResponse, QByteArray(1013, '\x55'));
    link->answer(longest.left(1023));
    link->answer(longest.mid(1023));
    EXPECT_EQ(read({6, 252, 0, {}}, 1012), SBusSuccess);
    EXPECT_EQ(link->calls.last(), "receive 1 60000");
}

TEST_F(EthernetLengthTest, ANegativeLengthIsRefusedWithoutValues) {
    for (const qint32 length : {-1, -9, -1024, std::numeric_limits<qint32>::min()}) {
        log.clear();
        connect(true);
        const quint16 sequence = static_cast<quint16>(link->sent.size());
        poll({withChecksum(ethernetBytes(sequence, dataResponse, hex("00 00 00 07 FF FF FF FE"), length))});
        EXPECT_EQ(results(), QStringList{"Request result : Bad Data"}) << length;
        // No byte is left of it.
        EXPECT_EQ(log.texts(LogLine::Route::Packet).mid(2, 2), (QStringList{">> Receive frame ", ""}));
        EXPECT_TRUE(rtu->allValues.isEmpty());
        expectConnected(false, true);
    }
}

TEST_F(EthernetLengthTest, ALengthBelowAHeaderIsRefusedWithoutValues) {
    for (qint32 length = 0; length < 9; ++length) {
        log.clear();
        connect(true);
        const quint16 sequence = static_cast<quint16>(link->sent.size());
        poll({withChecksum(ethernetBytes(sequence, dataResponse, hex("00 00 00 07 FF FF FF FE"), length))});
        EXPECT_EQ(results(), QStringList{"Request result : Bad Data"}) << length;
        EXPECT_TRUE(rtu->allValues.isEmpty());
        expectConnected(false, true);
    }
}

TEST_F(EthernetLengthTest, ADatagramOfFourBytesIsRefusedWithoutValues) {
    poll({hex("00 00 00 04")});
    EXPECT_EQ(results(), QStringList{"Request result : Bad Data"});
    EXPECT_TRUE(rtu->allValues.isEmpty());
}

TEST_F(EthernetLengthTest, AWriteAnswerOfAnyShortLengthIsRefused) {
    for (qint32 length = -2; length < 11; ++length) {
        const quint16 sequence = static_cast<quint16>(link->sent.size());
        link->answer(withChecksum(ethernetBytes(sequence, acknowledge, hex("00 00"), length)));
        EXPECT_EQ(writeRegister(), SBusBadData) << length;
    }
}

TEST_F(EthernetLengthTest, AHeaderWhoseOwnBytesPassForAChecksumGivesNoValues) {
    // Nine bytes whose last two, the sequence number's low byte and the attribute, are the checksum of the
    // others: version and protocol type are free to be chosen so.
    QByteArray telegram = hex("00 00 00 09 00 00 00");
    for (int choice = 0; referenceChecksum(telegram) != 0x0001; ++choice) {
        ASSERT_LT(choice, 65'536);
        telegram.replace(4, 2, bigEndian16(static_cast<unsigned>(choice)));
    }
    poll({telegram + hex("00 01")});
    EXPECT_EQ(link->sent.size(), 1);
    EXPECT_TRUE(rtu->allValues.isEmpty());
}

TEST_F(EthernetLengthTest, AnAnswerShorterThanAskedHandsOverOnlyTheElementsItCovers) {
    poll({ethernetTelegram(0, dataResponse, hex("00 00 00 07"))});
    EXPECT_EQ(rtu->allValues, QList<int>{7});
}

TEST_F(EthernetLengthTest, AnAnswerWithoutPayloadHandsOverNoValue) {
    poll({ethernetTelegram(0, dataResponse, {})});
    EXPECT_TRUE(rtu->allValues.isEmpty());
}

TEST_F(EthernetLengthTest, ChecksumBytesOfAShortAnswerAreNeverTakenForData) {
    poll({ethernetTelegram(0, dataResponse, hex("00 00 00 07 00 00"))});
    EXPECT_EQ(rtu->allValues, QList<int>{7});
}

TEST_F(EthernetLengthTest, AnyDatagramAtAllIsSurvived) {
    useTimeOut(0);
    quint32 state = 12'345;
    const auto next = [&state] {
        state = state * 1'664'525u + 1'013'904'223u;
        return state >> 8;
    };
    for (int i = 0; i < 2'000; ++i) {
        QByteArray datagram(static_cast<int>(next() % 64), '\0');
        for (char& byte : datagram)
            byte = static_cast<char>(next());
        // Most of them announce a length near the true one.
        if (datagram.size() >= 4 && i % 4 != 0)
            datagram.replace(0, 4, bigEndian32(next() % 80));
        link->answer(datagram);
        link->answer(QByteArray(static_cast<int>(next() % 64), '\x01'));
        EXPECT_NE(readRegisters(), SBusSuccess) << toHex(datagram);
    }
}
