#include "EthernetExchangeTest.h"
#include "SerialExchangeTest.h"

// In which order an exchange does what it does, and what the host is told of the RTU meanwhile. The RTU's
// flag changes while the channel is still on, after everything that belongs to the answer is in the trace.

namespace {

using SerialOrderTest = SerialExchangeTest;
using EthernetOrderTest = EthernetExchangeTest;

} // namespace

TEST_F(SerialOrderTest, AFailedSendTurnsTheRtuOffBeforeTheChannel) {
    link->failNextSend();
    readFlags(breakMode);
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after nothing"});
    expectConnected(false, false);
}

TEST_F(SerialOrderTest, AFailedReceiveTurnsTheRtuOffBeforeTheChannel) {
    link->failNextReceive();
    readFlags(breakMode);
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after " + log.texts(LogLine::Route::Packet).value(1)});
    EXPECT_EQ(log.texts(LogLine::Route::Packet).size(), 2);
    expectConnected(false, false);
}

TEST_F(SerialOrderTest, AShortAnswerIsTracedBeforeTheRtuTurnsOffAndThenTheChannel) {
    link->answer(hex("05 01"));
    readFlags(breakMode);
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after 05 01 00 00 "});
    expectConnected(false, false);
}

TEST_F(SerialOrderTest, ASilentStationIsTracedBeforeTheRtuTurnsOff) {
    useTimeOut(shortTimeOut);
    readFlags(breakMode);
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after 00 00 00 00 "});
    expectConnected(false, true);
}

TEST_F(SerialOrderTest, AGoodAnswerIsTracedBeforeTheRtuTurnsOn) {
    rtu->SetConnect(false, false);
    link->answer(withChecksum(hex("05 01")));
    readFlags(breakMode);
    EXPECT_EQ(told, QStringList{"RTU on, channel on, after " + toHex(withChecksum(hex("05 01"))) + ' '});

    told.clear();
    rtu->SetConnect(false, false);
    link->answer(hex("06"));
    writeOutput(breakMode);
    EXPECT_EQ(told, QStringList{"RTU on, channel on, after 06 "});
}

TEST_F(SerialOrderTest, NobodyIsToldOfAWrongAnswer) {
    link->answer(withWrongChecksum(hex("05 01")));
    link->answer(hex("FF"));
    readFlags(breakMode);
    link->answer(hex("15"));
    writeOutput(breakMode);
    EXPECT_EQ(told, QStringList{});
    expectConnected(true, true);
}

TEST_F(SerialOrderTest, AWrongAnswerIsTracedThenTheLineIsDrainedThenTheErrorIsTraced) {
    QList<int> drainsAtLine;
    const auto watcher = CLogger::GetInstance()->watchLinesAndFrames([&](const LogLine& line) {
        if (line.packetType != Halvex::PacketType::Sent)
            drainsAtLine << drains().size();
    });
    for (const char* start : {"B5 02", "B4 01", "B5 01"}) {
        drainsAtLine.clear();
        link->calls.clear();
        link->answer(withWrongChecksum(hex(start) + hex("05 01")));
        link->answer(hex("FF"));
        EXPECT_EQ(readFlags(dataMode), SBusBadData);
        EXPECT_EQ(drainsAtLine, (QList<int>{0, 0, 1})) << start; // header, dump, error
    }
}

TEST_F(SerialOrderTest, TheTelegramIsTracedAfterItHasGoneOutAndBeforeItsAnswerIsAwaited) {
    QStringList callsAtLine;
    const auto watcher = CLogger::GetInstance()->watchLinesAndFrames(
        [&](const LogLine&) { callsAtLine << link->calls.value(link->calls.size() - 1).section(' ', 0, 0); });
    link->answer(withChecksum(hex("05 01")));
    readFlags(breakMode);
    EXPECT_EQ(callsAtLine, (QStringList{"send", "send", "receive", "receive"}));
}

TEST_F(EthernetOrderTest, AFailedSendTurnsTheRtuOffBeforeTheChannel) {
    link->failNextSend();
    readRegisters();
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after nothing"});
    expectConnected(false, false);
}

TEST_F(EthernetOrderTest, AFailedReceiveTurnsTheRtuOffBeforeTheChannel) {
    link->failNextReceive();
    readRegisters();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].startsWith("RTU off, channel on, after 00 00 00 10 ")) << told[0];
    expectConnected(false, false);
}

TEST_F(EthernetOrderTest, ARestThatFailsTurnsTheRtuOffBeforeTheChannel) {
    link->answer(registers().left(10));
    link->failNextReceive();
    readRegisters();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].startsWith("RTU off, channel on, after 00 00 00 10 ")) << told[0];
    expectConnected(false, false);
}

TEST_F(EthernetOrderTest, ARestOfTheWrongLengthIsTracedBeforeTheRtuTurnsOffAndThenTheChannel) {
    link->answer(registers().left(10));
    link->answer(registers().mid(10) + hex("00"));
    readRegisters();
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after " + QString("00 ").repeated(10)});
    expectConnected(false, false);
}

TEST_F(EthernetOrderTest, ARestThatNeverComesIsTracedBeforeTheRtuTurnsOff) {
    useTimeOut(shortTimeOut);
    link->answer(registers().left(10));
    readRegisters();
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after " + QString("00 ").repeated(10)});
    expectConnected(false, true);

    connect(true);
    link->answer(acknowledged(1).left(10));
    writeRegister();
    EXPECT_EQ(told, QStringList{"RTU off, channel on, after >> Receive frame "});
    expectConnected(false, true);
}

TEST_F(EthernetOrderTest, AGoodAnswerIsTracedBeforeTheRtuTurnsOn) {
    rtu->SetConnect(false, false);
    link->answer(registers());
    readRegisters();
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0], "RTU on, channel on, after " + toHex(registers().mid(18)) + ' ');

    told.clear();
    rtu->SetConnect(false, false);
    link->answer(acknowledged(1));
    writeRegister();
    EXPECT_EQ(told, QStringList{"RTU on, channel on, after " + toHex(acknowledged(1)) + ' '});
}

TEST_F(EthernetOrderTest, AnErrorIsTracedBeforeTheRtuTurnsOff) {
    struct Row {
        QByteArray answer;
        const char* error;
    };
    for (const Row& row : {Row{registers(77), "Invaild Sequence"}, Row{acknowledged(1), "Ack Error: 2"},
                           Row{damaged(registers(2)), "CRC Error"}}) {
        connect(true);
        link->answer(row.answer);
        EXPECT_EQ(readRegisters(), SBusBadData);
        EXPECT_EQ(told, QStringList{QString("RTU off, channel on, after ") + row.error});
    }
    for (const Row& row : {Row{acknowledged(77), "Invaild Sequence"}, Row{acknowledged(4, 9), "Ack Error: 9"},
                           Row{registers(5), "Ack Error: 1"}}) {
        connect(true);
        link->answer(row.answer);
        EXPECT_EQ(writeRegister(), SBusBadData);
        EXPECT_EQ(told, QStringList{QString("RTU off, channel on, after ") + row.error});
    }
}

TEST_F(EthernetOrderTest, NobodyIsToldOfAWriteAnswerWithAWrongChecksum) {
    link->answer(damaged(acknowledged()));
    EXPECT_EQ(writeRegister(), SBusBadData);
    EXPECT_EQ(told, QStringList{});
}
