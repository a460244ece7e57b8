#include "runtime/RunLog.h"
#include "SmallSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Halvex::LogLevel;
using Halvex::PacketType;
using host::RunLog;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const QString sentHeader = QStringLiteral("<< Send frame ");
const QString receivedHeader = QStringLiteral(">> Receive frame ");

void writeResult(LogLevel level, const char* text) {
    CLogger::GetInstance()->writeAll(4, 7, level, QString::fromLatin1(text));
}

void writeFrame(PacketType type, const QString& header, const char* hex) {
    CLogger::GetInstance()->writeConPacket(4, 7, type, header, true);
    CLogger::GetInstance()->writeConPacket(4, 7, type, QString::fromLatin1(hex), false);
}

void writeRefusal() {
    writeFrame(PacketType::Sent, sentHeader, "B5 00 05 ");
    CLogger::GetInstance()->writeConPacket(4, 7, PacketType::ProtocolError, QStringLiteral("Ack Error: 1"),
                                           true);
    writeResult(LogLevel::RequestFailure, "Request result : Bad Data");
}

host::Site serialSite() {
    host::Site site = smallSite();
    site.channels[0].type = host::LineType::Serial;
    site.channels[0].primary = host::SerialEnd{"/dev/x"};
    return site;
}

} // namespace

TEST(RunLog, TellsFailuresAndTheirEndButNotSuccess) {
    const host::Site site = smallSite();
    RunLog log(site, false);
    writeResult(LogLevel::Success, "Request result : Success");
    EXPECT_THAT(log.takeMessages(), IsEmpty());
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    EXPECT_THAT(log.takeMessages(),
                ElementsAre(HasSubstr("channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5): "
                                      "no complete answer")));
    writeResult(LogLevel::Success, "Request result : Success");
    EXPECT_THAT(log.takeMessages(), ElementsAre(HasSubstr("answers again")));
}

TEST(RunLog, RemembersARefusalThroughAnswersToOtherPolls) {
    const host::Site site = smallSite();
    RunLog log(site, false);
    writeRefusal();
    EXPECT_TRUE(log.wasRefused(4, 7));
    EXPECT_FALSE(log.wasRefused(4, 8));
    writeFrame(PacketType::Sent, sentHeader, "B5 00 05 ");
    EXPECT_TRUE(log.wasRefused(4, 7));
    writeResult(LogLevel::Success, "Request result : Success");
    EXPECT_TRUE(log.wasRefused(4, 7));
}

TEST(RunLog, TellsSilenceAfterARefusalAsSilence) {
    const host::Site site = smallSite();
    for (const char* const result : {"Request result : Timeout", "Request result : Chennel Error"}) {
        RunLog log(site, false);
        writeRefusal();
        log.takeMessages();
        writeFrame(PacketType::Sent, sentHeader, "B5 00 05 ");
        writeResult(LogLevel::RequestFailure, result);
        EXPECT_FALSE(log.wasRefused(4, 7)) << result;
        EXPECT_TRUE(log.isSilent(4, 7)) << result;
        EXPECT_THAT(log.takeMessages(), ElementsAre(HasSubstr("no complete answer"))) << result;
    }
}

TEST(RunLog, KnowsARefusalThatTheDriverTakesForACutAnswer) {
    const host::Site site = serialSite();
    RunLog log(site, false);
    writeFrame(PacketType::Received, receivedHeader, "B5 02 00 01 33 D5 00 00 ");
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    EXPECT_TRUE(log.wasRefused(4, 7));
    EXPECT_THAT(log.takeMessages(), ElementsAre(HasSubstr("refused")));
    // Silence afterwards is silence.
    writeFrame(PacketType::Received, receivedHeader, "00 00 00 00 00 00 00 00 ");
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    EXPECT_FALSE(log.wasRefused(4, 7));
}

TEST(RunLog, NamesTheEndInUseWhenNobodyAnswers) {
    host::Site site = smallSite();
    site.channels[0].secondary = host::UdpEnd{"127.0.0.2", 9};
    RunLog log(site, false);
    const auto connect = [](const char* text) {
        CLogger::GetInstance()->writeAll(4, 0, LogLevel::Success, QString::fromLatin1(text));
    };
    connect("Secondary channel has connected");
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    EXPECT_THAT(log.takeMessages(), ElementsAre(HasSubstr("udp://127.0.0.2:9")));
    connect("Primary channel has connected");
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    EXPECT_THAT(log.takeMessages(), ElementsAre(HasSubstr("udp://127.0.0.1:9")));
}

TEST(RunLog, ShowsFramesWhenAskedTo) {
    const host::Site site = smallSite();
    RunLog log(site, true);
    writeFrame(PacketType::Sent, sentHeader, "B5 00 05 ");
    EXPECT_THAT(log.takeMessages(), ElementsAre("4/7 << Send frame", "    B5 00 05"));
    RunLog quiet(site, false);
    writeFrame(PacketType::Sent, sentHeader, "B5 00 05 ");
    EXPECT_THAT(quiet.takeMessages(), IsEmpty());
}

TEST(RunLog, KnowsAnRtuThatHasFallenSilent) {
    const host::Site site = smallSite();
    RunLog log(site, false);
    EXPECT_FALSE(log.isSilent(4, 7));
    writeResult(LogLevel::RequestFailure, "Request result : Chennel Error");
    EXPECT_TRUE(log.isSilent(4, 7));
    CLogger::GetInstance()->writeAll(4, 0, LogLevel::Success,
                                     QStringLiteral("Primary channel has connected"));
    EXPECT_TRUE(log.isSilent(4, 7));
    writeResult(LogLevel::Success, "Request result : Success");
    EXPECT_FALSE(log.isSilent(4, 7));
}

namespace {

using host::RequestResult;

// The results that the log tells while it lives.
struct Results {
    explicit Results(const host::Site& site)
        : log(site, false, [this](const RequestResult& result) { all.push_back(result); }) {}

    std::vector<RequestResult> all;
    RunLog log;
};

} // namespace

TEST(RunLog, TellsAListenerHowEachRequestEnded) {
    const host::Site site = smallSite();
    Results results(site);
    writeFrame(PacketType::Sent, sentHeader, "00 00 00 10 ");
    writeResult(LogLevel::Success, "Request result : Success");
    writeRefusal();
    writeResult(LogLevel::RequestFailure, "Request result : Timeout");
    writeResult(LogLevel::RequestFailure, "Request result : Bad Data");
    CLogger::GetInstance()->writeAll(4, 0, LogLevel::LinkFailure, QStringLiteral("Error opening channel"));
    ASSERT_EQ(results.all.size(), 5U);
    EXPECT_EQ(results.all[0].kind, RequestResult::Kind::Answered);
    EXPECT_EQ(results.all[0].sentHex, "00 00 00 10 ");
    EXPECT_EQ(results.all[0].reason, "");
    EXPECT_EQ(results.all[1].kind, RequestResult::Kind::Refused);
    EXPECT_EQ(results.all[1].protocolError, "Ack Error: 1");
    EXPECT_EQ(results.all[2].kind, RequestResult::Kind::NoAnswer);
    EXPECT_EQ(results.all[2].sentHex, "") << "that of an earlier request";
    EXPECT_EQ(results.all[3].kind, RequestResult::Kind::BadAnswer);
    EXPECT_EQ(results.all[4].kind, RequestResult::Kind::LineClosed);
    EXPECT_THAT(results.all[4].reason, HasSubstr("cannot open udp://127.0.0.1:9"));
}

// The driver takes such an acknowledge for a good one.
TEST(RunLog, KnowsARefusedWriteOnASerialLine) {
    const host::Site site = serialSite();
    Results results(site);
    EXPECT_FALSE(results.log.wasLastRequestRefused(4, 7));
    writeFrame(PacketType::Sent, sentHeader, "B5 00 05 0D 03 00 C8 00 01 7A 3D ");
    writeFrame(PacketType::Received, receivedHeader, "B5 02 00 01 33 D5 ");
    writeResult(LogLevel::Success, "Request result : Success");
    EXPECT_TRUE(results.log.wasLastRequestRefused(4, 7));
    EXPECT_FALSE(results.log.wasLastRequestRefused(4, 8));
    writeFrame(PacketType::Sent, sentHeader, "B5 00 05 0D 03 00 C8 00 01 7A 3D ");
    writeFrame(PacketType::Received, receivedHeader, "B5 02 00 00 23 F4 ");
    writeResult(LogLevel::Success, "Request result : Success");
    EXPECT_FALSE(results.log.wasLastRequestRefused(4, 7));
    ASSERT_EQ(results.all.size(), 2U);
    EXPECT_EQ(results.all[0].kind, RequestResult::Kind::Refused);
    EXPECT_EQ(results.all[1].kind, RequestResult::Kind::Answered);
    EXPECT_THAT(results.log.takeMessages(),
                ElementsAre(HasSubstr("refused a request"), HasSubstr("answers again")));
}

TEST(RunLog, KnowsARefusedWriteInBreakMode) {
    host::Site site = serialSite();
    site.channels[0].rtus[0].transmitType = host::TransmitType::Break;
    Results results(site);
    writeFrame(PacketType::Sent, sentHeader, "05 0D 03 00 C8 00 01 46 41 ");
    writeFrame(PacketType::Received, receivedHeader, "15 ");
    CLogger::GetInstance()->writeConPacket(4, 7, PacketType::ProtocolError, QStringLiteral("Control Error"),
                                           false);
    writeResult(LogLevel::RequestFailure, "Request result : Bad Data");
    ASSERT_EQ(results.all.size(), 1U);
    EXPECT_EQ(results.all[0].kind, RequestResult::Kind::Refused);
}

// A poll without telegrams says nothing of the request before it.
TEST(RunLog, ForgetsARefusalWithItsRequest) {
    const host::Site site = smallSite();
    Results results(site);
    writeRefusal();
    writeResult(LogLevel::Success, "Request result : Success");
    ASSERT_EQ(results.all.size(), 2U);
    EXPECT_EQ(results.all[1].kind, RequestResult::Kind::Answered);
}
