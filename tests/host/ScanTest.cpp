#include "oneshot/ScanText.h"
#include "oneshot/ScannedSite.h"
#include "plan/LineChecks.h"
#include "plan/ScanTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ControllerLine;
using host::LineScan;
using host::ScanReply;
using host::SerialEnd;
using host::siteTextOf;
using host::UdpEnd;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using namespace std::chrono_literals;

namespace {

using Kind = ScanReply::Kind;

ControllerLine ethernet() {
    ControllerLine line;
    line.end = UdpEnd{"10.0.0.1"};
    line.timeout = 200ms;
    return line;
}

ControllerLine serial(unsigned baud, host::TransmitType type = host::TransmitType::Data) {
    ControllerLine line;
    line.end = SerialEnd{"/dev/x", baud};
    line.transmitType = type;
    line.timeout = 200ms;
    return line;
}

ScanReply reply(unsigned station, Kind kind, const std::string& fault = {}) {
    return {station, kind, std::chrono::microseconds(1'250), 7, fault};
}

host::LoadedSite loaded(const std::string& text) {
    return host::readSite(text, "site.toml", [](const std::string&) { return text::FileText(); });
}

} // namespace

TEST(ScanReply, OfTwoTriesIsThatOfTheSecondWhenItIsThere) {
    EXPECT_EQ(joined(reply(5, Kind::Answers), reply(5, Kind::Answers)).kind, Kind::Answers);
    EXPECT_EQ(joined(reply(5, Kind::Answers), reply(5, Kind::Refuses)).kind, Kind::Refuses);
    EXPECT_EQ(joined(reply(5, Kind::Unclear), reply(5, Kind::Answers)).kind, Kind::Answers);
    EXPECT_EQ(joined(reply(5, Kind::Unclear), reply(5, Kind::Silent)).kind, Kind::Unclear);
}

// On a serial line the late answer of another station is taken for its answer.
TEST(ScanReply, IsInDoubtWhenTheSecondTryFails) {
    for (const Kind first : {Kind::Answers, Kind::Refuses})
        for (const Kind second : {Kind::Silent, Kind::Unclear}) {
            const ScanReply both = joined(reply(5, first), reply(5, second));
            EXPECT_EQ(both.kind, Kind::Once);
            EXPECT_FALSE(isPresent(both));
        }
}

TEST(ScanText, TellsWhatAStationReplied) {
    EXPECT_EQ(replyAsText(ethernet(), reply(5, Kind::Answers)), "station 5: answers in 1.25 ms, R0 = 7");
    EXPECT_EQ(replyAsText(serial(19'200), reply(6, Kind::Refuses, "acknowledge code 1")),
              "station 6 at 19200 baud, transmit type data: answers in 1.25 ms, but refuses the read of R0 "
              "(acknowledge code 1)");
    EXPECT_THAT(replyAsText(ethernet(), reply(5, Kind::Unclear, "damaged: 5 of 16 bytes")),
                HasSubstr("something came (damaged: 5 of 16 bytes)"));
    EXPECT_THAT(replyAsText(ethernet(), reply(5, Kind::Once)), HasSubstr("slower than --timeout"));
}

TEST(ScanText, WritesJson) {
    EXPECT_EQ(replyAsJson(ethernet(), reply(5, Kind::Answers)),
              "{\"line\":\"udp://10.0.0.1:5050\",\"transmit_type\":null,\"station\":5,\"result\":\"answers\","
              "\"round_trip_ms\":1.250,\"value\":7}");
    EXPECT_EQ(replyAsJson(serial(9600, host::TransmitType::Break), reply(5, Kind::Refuses)),
              "{\"line\":\"serial:/dev/x?baud=9600&parity=none&stop=1\",\"transmit_type\":\"break\","
              "\"station\":5,\"result\":\"refuses\",\"round_trip_ms\":1.250,\"value\":null}");
}

TEST(ScannedSite, PassesTheChecksAndHoldsWhoIsThere) {
    const LineScan scan{ethernet(),
                        {reply(4, Kind::Silent), reply(5, Kind::Answers), reply(6, Kind::Once),
                         reply(7, Kind::Unclear), reply(9, Kind::Answers)},
                        {},
                        false};
    host::LoadedSite site = loaded(siteTextOf({scan}, "site.toml"));
    checkLines(site.site, site.findings);
    EXPECT_THAT(site.findings.all(), IsEmpty());
    const host::Channel& channel = site.site.channels.at(0);
    EXPECT_EQ(toText(channel.primary), "udp://10.0.0.1:5050");
    ASSERT_THAT(channel.rtus, SizeIs(2));
    EXPECT_EQ(channel.rtus[0].station, 5U);
    EXPECT_EQ(channel.rtus[0].name, "station-5");
    EXPECT_EQ(toText(channel.rtus[0].points.at(0).address), "R0");
    EXPECT_EQ(channel.rtus[1].station, 9U);
}

TEST(ScannedSite, HoldsTheSettingsOfASerialLine) {
    ControllerLine line = serial(19'200, host::TransmitType::Break);
    line.breakDelayMs = 12;
    const host::LoadedSite site = loaded(
        siteTextOf({LineScan{line, {reply(5, Kind::Answers), reply(6, Kind::Answers)}, {}, false}}, "x"));
    EXPECT_THAT(site.findings.all(), IsEmpty());
    const host::Channel& channel = site.site.channels.at(0);
    EXPECT_EQ(channel.type, host::LineType::Serial);
    EXPECT_EQ(toText(channel.primary), "serial:/dev/x?baud=19200&parity=none&stop=1");
    EXPECT_EQ(channel.rtus.at(1).transmitType, host::TransmitType::Break);
    EXPECT_EQ(channel.rtus.at(1).breakDelayMs, 12U);
}

TEST(ScannedSite, LeavesOutTheElementThatAStationRefuses) {
    const std::string text = siteTextOf({LineScan{ethernet(), {reply(5, Kind::Refuses)}, {}, false}}, "x");
    const host::LoadedSite site = loaded(text);
    EXPECT_FALSE(site.findings.hasErrors());
    EXPECT_THAT(site.site.channels.at(0).rtus.at(0).points, IsEmpty());
    EXPECT_THAT(text, HasSubstr("# It refused the read of R0"));
}

TEST(ScannedSite, IsThatOfTheWayInWhichMostAnswer) {
    const LineScan few{serial(9600), {reply(5, Kind::Answers)}, {}, false};
    const LineScan most{serial(19'200), {reply(5, Kind::Answers), reply(6, Kind::Answers)}, {}, false};
    const LineScan none{serial(38'400), {reply(5, Kind::Silent)}, {}, false};
    const std::string text = siteTextOf({few, most, none}, "x");
    const host::LoadedSite site = loaded(text);
    EXPECT_THAT(site.findings.all(), IsEmpty());
    ASSERT_THAT(site.site.channels, SizeIs(1));
    EXPECT_EQ(std::get<SerialEnd>(site.site.channels[0].primary).baud, 19'200U);
    EXPECT_THAT(text, AllOf(HasSubstr("baud=9600&parity=none&stop=1, transmit type data, from station 5\n"),
                            Not(HasSubstr("38400"))));
}

TEST(ScannedSite, SurvivesADeviceWithSpecialCharacters) {
    ControllerLine line = serial(9600);
    line.end = SerialEnd{"\\\\.\\COM\"10"};
    const host::LoadedSite site =
        loaded(siteTextOf({LineScan{line, {reply(5, Kind::Answers)}, {}, false}}, "x"));
    EXPECT_THAT(site.findings.all(), IsEmpty());
    EXPECT_EQ(std::get<SerialEnd>(site.site.channels.at(0).primary).device, "\\\\.\\COM\"10");
}

// The program's own time-out.
TEST(ScanTime, OfTwoHundredAndFiftyFourStationsIsBelowAMinute) {
    EXPECT_LT(silentScanTime(ethernet(), 254), 60s);
    EXPECT_EQ(silentScanTime(serial(9600, host::TransmitType::Break), 1), 200ms + 13ms + 10ms);
}

// 17 bytes of 10 bits.
TEST(ScanTime, HasToLeaveTheAnswerTimeToCome) {
    EXPECT_EQ(scanTimeoutFault(ethernet()), "");
    EXPECT_EQ(scanTimeoutFault(serial(1200)), "");
    EXPECT_EQ(scanTimeoutFault(serial(600)),
              "request and answer take 283 ms at 600 baud, and the time-out is 200 ms; leave this baud rate "
              "out, or give a longer --timeout");
}
