#include "plan/LineChecks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::Channel;
using host::SerialEnd;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

host::Rtu rtuReading(char media, unsigned first, unsigned count) {
    host::Rtu rtu;
    rtu.id = 3;
    rtu.name = "tank";
    rtu.station = 5;
    rtu.place = {"site.toml", 7, 6};
    for (unsigned i = 0; i < count; ++i) {
        host::Point point;
        point.id = i;
        point.kind = host::isBitMedia(media) ? host::PointKind::Status : host::PointKind::Analog;
        point.address = {media, first + i};
        rtu.points.push_back(point);
    }
    return rtu;
}

Channel serialLine(unsigned baud, const host::Rtu& rtu) {
    Channel channel;
    channel.id = 1;
    channel.type = host::LineType::Serial;
    channel.primary = SerialEnd{"/dev/x", baud};
    channel.rtus = {rtu};
    return channel;
}

Channel ethernetLine(const host::Rtu& rtu) {
    Channel channel;
    channel.id = 1;
    channel.primary = host::UdpEnd{"h"};
    channel.rtus = {rtu};
    return channel;
}

std::vector<std::string> findingsOf(const Channel& channel) {
    host::Findings findings;
    checkLines({{channel}}, findings);
    std::vector<std::string> texts;
    for (const host::Finding& finding : findings.all())
        texts.push_back(toText(finding));
    return texts;
}

} // namespace

// 9 bytes out and 4 + 508 back, 10 bits each.
TEST(LineChecks, RefusesATelegramThatTakesLongerThanItsTimeOut) {
    EXPECT_THAT(
        findingsOf(serialLine(4800, rtuReading('R', 100, 127))),
        ElementsAre("site.toml:7:6: error: RTU 3 \"tank\" on serial:/dev/x?baud=4800&parity=none&stop=1: the "
                    "read of 127 elements from R100 on is never answered: request and answer take 1085 ms at "
                    "4800 baud, and the time-out is 1000 ms; raise the baud rate, raise the time-out to "
                    "2200ms, or let the telegram have fewer elements"));
}

// 1085.4 ms: the driver waits until the time-out has passed in full, and not until the line has.
TEST(LineChecks, DrawsTheLineAtTheTimeOfTheTelegram) {
    host::Rtu rtu = rtuReading('R', 100, 127);
    rtu.timeout = 1085ms;
    EXPECT_THAT(findingsOf(serialLine(4800, rtu)), ElementsAre(HasSubstr("is never answered")));
    rtu.timeout = 1086ms;
    EXPECT_THAT(findingsOf(serialLine(4800, rtu)), ElementsAre(HasSubstr("warning: ")));
    rtu.timeout = 2170ms;
    EXPECT_THAT(findingsOf(serialLine(4800, rtu)), ElementsAre(HasSubstr("warning: ")));
    rtu.timeout = 2171ms;
    EXPECT_THAT(findingsOf(serialLine(4800, rtu)), IsEmpty());
}

TEST(LineChecks, WarnsOfATelegramThatNeedsMoreThanHalfOfItsTimeOut) {
    EXPECT_THAT(findingsOf(serialLine(9600, rtuReading('R', 0, 127))),
                ElementsAre(AllOf(
                    HasSubstr("warning: RTU 3 \"tank\""),
                    HasSubstr("the read of 127 elements from R0 on takes 543 ms at 9600 baud, more than "
                              "half of the time-out of 1000 ms; a slow answer comes too late: raise the "
                              "time-out to 1100ms"))));
    EXPECT_THAT(findingsOf(serialLine(19200, rtuReading('R', 0, 127))), IsEmpty());
}

// The driver starts its time-out behind the break.
TEST(LineChecks, LeavesTheBreakOutOfTheTimeOut) {
    host::Rtu rtu = rtuReading('F', 0, 8); // 7 bytes out, 2 + 1 back: 10.4 ms
    rtu.transmitType = host::TransmitType::Break;
    rtu.breakDelayMs = 500;
    rtu.timeout = 21ms;
    EXPECT_THAT(findingsOf(serialLine(9600, rtu)), IsEmpty());
    rtu.timeout = 10ms;
    EXPECT_THAT(findingsOf(serialLine(9600, rtu)), ElementsAre(HasSubstr("error: ")));
}

TEST(LineChecks, RefusesALineWhoseBytesComeTooFarApart) {
    host::Rtu rtu = rtuReading('F', 0, 1);
    rtu.timeout = 60s;
    EXPECT_THAT(findingsOf(serialLine(300, rtu)),
                ElementsAre(HasSubstr("is never answered: at 300 baud a byte takes 33.3 ms, and the driver "
                                      "takes a silence of 20 ms for the end of an answer; raise the baud")));
    EXPECT_THAT(findingsOf(serialLine(600, rtu)), IsEmpty());
}

TEST(LineChecks, TellsTheLongestTelegramOfAnRtuAndHowManyMoreThereAre) {
    host::Rtu rtu = rtuReading('R', 0, 110);
    for (const unsigned first : {1000U, 2000U}) {
        const host::Rtu more = rtuReading('R', first, first == 1000 ? 127 : 120);
        rtu.points.insert(rtu.points.end(), more.points.begin(), more.points.end());
    }
    EXPECT_THAT(findingsOf(serialLine(4800, rtu)),
                ElementsAre(AllOf(HasSubstr("127 elements from R1000 on"),
                                  HasSubstr("the time-out is 1000 ms (and 2 more telegrams); raise"))));
}

TEST(LineChecks, LooksAtBothEndsOfALine) {
    Channel channel = serialLine(115'200, rtuReading('R', 0, 127));
    channel.secondary = SerialEnd{"/dev/y", 4800};
    EXPECT_THAT(findingsOf(channel), ElementsAre(HasSubstr("on serial:/dev/y?baud=4800")));
}

TEST(LineChecks, PassesOverDisabledRtus) {
    Channel channel = serialLine(4800, rtuReading('R', 0, 127));
    channel.rtus[0].enabled = false;
    EXPECT_THAT(findingsOf(channel), IsEmpty());
}

TEST(LineChecks, ExpectsAnEthernetAnswerAfterTenMillisecondsUnlessTold) {
    Channel channel = ethernetLine(rtuReading('R', 0, 127));
    channel.rtus[0].timeout = 20ms;
    EXPECT_THAT(findingsOf(channel), IsEmpty());
    channel.rtus[0].timeout = 19ms;
    EXPECT_THAT(findingsOf(channel),
                ElementsAre(AllOf(HasSubstr("warning: "), Not(HasSubstr("baud")),
                                  HasSubstr("takes 10 ms, 10 ms of them the controller's, more than half of "
                                            "the time-out of 19 ms"))));
    channel.expectedAnswer = 2ms;
    EXPECT_THAT(findingsOf(channel), IsEmpty());
    channel.expectedAnswer = 300ms;
    channel.rtus[0].timeout = 500ms;
    EXPECT_THAT(findingsOf(channel), ElementsAre(StartsWith("site.toml:7:6: warning: ")));
}

TEST(LineChecks, AddsTheExpectedAnswerOfASerialLine) {
    Channel channel = serialLine(19200, rtuReading('R', 0, 127));
    channel.expectedAnswer = 300ms;
    EXPECT_THAT(findingsOf(channel),
                ElementsAre(HasSubstr("takes 571 ms at 19200 baud, 300 ms of them the controller's")));
}
