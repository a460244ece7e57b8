#include "Hex.h"
#include "ServedSite.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>

#include <vector>

using testing::HasSubstr;

namespace {

constexpr int patienceMs = 60'000;

const char* const readLevel = "00 07 00 00 00 06 01 03 00 02 00 02";
const char* const levelAnswer = "00 07 00 00 00 07 01 03 04 FF FF FF FE";
const char* const switchRun = "00 08 00 00 00 06 01 05 00 01 FF 00";

// So many bytes, or fewer when the connection has ended.
std::string receive(QTcpSocket& socket, int count) {
    while (socket.bytesAvailable() < count && socket.waitForReadyRead(patienceMs)) {
    }
    return toHex(socket.read(count)).toStdString();
}

std::string ask(QTcpSocket& socket, const char* request, int answerSize) {
    socket.write(hex(request));
    return receive(socket, answerSize);
}

bool isEndedByServer(QTcpSocket& socket) {
    return socket.state() == QAbstractSocket::UnconnectedState || socket.waitForDisconnected(patienceMs);
}

} // namespace

TEST(ModbusServer, AnswersWithTransactionAndUnit) {
    ServedSite served;
    const auto client = served.connect();
    EXPECT_EQ(ask(*client, readLevel, 13), levelAnswer);
    EXPECT_EQ(ask(*client, "FF FE 00 00 00 02 2A 63", 9), "FF FE 00 00 00 03 2A E3 01");
}

TEST(ModbusServer, TakesRequestsInPiecesOfAnySize) {
    ServedSite served;
    const auto client = served.connect();
    for (const char byte : hex(readLevel)) {
        client->write(&byte, 1);
        client->waitForBytesWritten(patienceMs);
    }
    EXPECT_EQ(receive(*client, 13), levelAnswer);
}

TEST(ModbusServer, AnswersRequestsThatComeTogetherInTheirOrder) {
    ServedSite served;
    const auto client = served.connect();
    constexpr int count = 1'000;
    QByteArray requests;
    QByteArray answers;
    for (int i = 0; i < count; ++i) {
        requests += static_cast<char>(i >> 8);
        requests += static_cast<char>(i);
        requests += hex(readLevel).mid(2);
        answers += static_cast<char>(i >> 8);
        answers += static_cast<char>(i);
        answers += hex(levelAnswer).mid(2);
    }
    client->write(requests);
    EXPECT_EQ(receive(*client, answers.size()), toHex(answers).toStdString());
}

TEST(ModbusServer, AnswersOthersWhileAWriteIsOnItsWay) {
    ServedSite served;
    served.taker.hold();
    const auto writer = served.connect();
    const auto reader = served.connect();
    writer->write(hex(switchRun));
    writer->waitForBytesWritten(patienceMs);
    ASSERT_TRUE(eventually([&] { return served.taker.commands().size() == 1; }));
    EXPECT_EQ(ask(*reader, readLevel, 13), levelAnswer);
    EXPECT_EQ(writer->bytesAvailable(), 0);
    served.taker.end({});
    EXPECT_EQ(receive(*writer, 12), switchRun);
}

TEST(ModbusServer, EndsAWriteWhoseClientHasGone) {
    ServedSite served;
    served.taker.hold();
    auto writer = served.connect();
    writer->write(hex(switchRun));
    writer->waitForBytesWritten(patienceMs);
    ASSERT_TRUE(eventually([&] { return served.taker.commands().size() == 1; }));
    writer->abort();
    served.taker.end({});
    EXPECT_TRUE(eventually([&] { return served.server.counts().clients == 0; }));
    EXPECT_EQ(ask(*served.connect(), readLevel, 13), levelAnswer);
}

TEST(ModbusServer, EndsAConnectionThatSpeaksSomethingElse) {
    ServedSite served;
    const auto browser = served.connect();
    const auto client = served.connect();
    browser->write("GET / HTTP/1.1\r\n\r\n");
    EXPECT_TRUE(isEndedByServer(*browser));
    EXPECT_EQ(served.server.counts().rubbish, 1U);
    EXPECT_EQ(ask(*client, readLevel, 13), levelAnswer);
}

TEST(ModbusServer, EndsConnectionsOfWhomItDoesNotAllow) {
    host::ModbusSettings settings;
    settings.allowed = {*host::NetworkRange::parse("10.0.0.0/8")};
    ServedSite served(settings);
    const auto client = served.connect();
    EXPECT_TRUE(isEndedByServer(*client));
    EXPECT_EQ(served.server.counts().rejected, 1U);
}

TEST(ModbusServer, LetsInWhomItAllows) {
    host::ModbusSettings settings;
    settings.allowed = {*host::NetworkRange::parse("10.0.0.0/8"), *host::NetworkRange::parse("127.0.0.0/8")};
    ServedSite served(settings);
    EXPECT_EQ(ask(*served.connect(), readLevel, 13), levelAnswer);
}

TEST(ModbusServer, TellsWhoCannotHaveThePort) {
    ServedSite served;
    host::ModbusSettings settings;
    settings.listen = {"127.0.0.1", served.server.port(), {}};
    host::ModbusServer other({served.map, settings, served.store, served.taker});
    EXPECT_THAT(other.start(), HasSubstr("modbus: cannot listen on 127.0.0.1:" +
                                         std::to_string(served.server.port()) + ": Address already in use"));
}

TEST(ModbusServer, EndsItsConnectionsAtOnceWhenItStops) {
    ServedSite served;
    served.taker.hold();
    const auto silent = served.connect();
    const auto writer = served.connect();
    writer->write(hex(switchRun));
    writer->waitForBytesWritten(patienceMs);
    ASSERT_TRUE(eventually([&] { return served.taker.commands().size() == 1; }));
    served.server.stop();
    EXPECT_TRUE(isEndedByServer(*silent));
    EXPECT_TRUE(isEndedByServer(*writer));
    served.taker.end({}); // nobody waits for it any more
}

TEST(ModbusServer, AnswersGoodClientsAmongManyBadOnes) {
    ServedSite served;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int i = 0; i < 200; ++i)
        clients.push_back(served.connect());
    // Of four clients one is silent, one stops within a frame, and two are good; every eighth sends rubbish.
    for (std::size_t i = 0; i < clients.size(); i += 4) {
        clients[i + 1]->write(i % 8 == 0 ? hex("00 01 00 00 00 06 01 03 00") : QByteArray(5'000, '\xA5'));
        clients[i + 1]->flush();
    }
    for (int round = 0; round < 20; ++round)
        for (std::size_t i = 0; i < clients.size(); i += 4)
            for (const std::size_t good : {i + 2, i + 3})
                EXPECT_EQ(ask(*clients[good], readLevel, 13), levelAnswer) << round << ' ' << good;
    EXPECT_TRUE(eventually([&] { return served.server.counts().rubbish == 25; }));
    EXPECT_EQ(served.server.counts().clients, 175U);
    EXPECT_EQ(served.server.counts().requests, 2'000U);
}

TEST(ModbusServer, MakesRoomByTheClientThatHasBeenQuietForLongest) {
    ServedSite served;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (std::size_t i = 0; i < host::ModbusServer::mostClients; ++i)
        clients.push_back(served.connect());
    ASSERT_TRUE(eventually([&] { return served.server.counts().clients == clients.size(); }));
    EXPECT_EQ(ask(*clients[0], readLevel, 13), levelAnswer); // so that another one is quieter
    const auto late = served.connect();
    EXPECT_EQ(ask(*late, readLevel, 13), levelAnswer);
    EXPECT_EQ(served.server.counts().replaced, 1U);
    EXPECT_EQ(served.server.counts().clients, clients.size());
    EXPECT_EQ(ask(*clients[0], readLevel, 13), levelAnswer);
    EXPECT_TRUE(isEndedByServer(*clients[1]));
}

TEST(ModbusServer, KeepsAClientThatReadsNothingFromHoldingUpOthers) {
    ServedSite served;
    const auto flood = served.connect();
    const auto client = served.connect();
    flood->setReadBufferSize(1);
    QByteArray requests;
    for (int i = 0; i < 20'000; ++i)
        requests += hex(readLevel);
    for (int i = 0; i < 20; ++i)
        flood->write(requests);
    flood->flush();
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(ask(*client, readLevel, 13), levelAnswer);
}
