#include "plan/Forecast.h"
#include "plan/TelegramTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::Channel;
using host::LineForecast;
using host::LineType;
using host::Point;
using host::PointKind;
using host::SerialEnd;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

void addPoints(host::Rtu& rtu, char media, unsigned first, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        Point point;
        point.id = static_cast<unsigned>(rtu.points.size());
        point.name = "P" + std::to_string(point.id);
        point.kind = host::isBitMedia(media) ? PointKind::Status : PointKind::Analog;
        point.address = {media, first + i};
        rtu.points.push_back(point);
    }
}

Channel lineWith(const host::Rtu& rtu, LineType type) {
    Channel channel;
    channel.id = 1;
    channel.name = "line";
    channel.type = type;
    if (type == LineType::Serial)
        channel.primary = SerialEnd{"/dev/x", 9600, SerialEnd::Parity::None, 1, 8};
    channel.rtus.push_back(rtu);
    return channel;
}

host::Rtu rtuWithNineFlagsAndTwoRegisters() {
    host::Rtu rtu;
    rtu.id = 1;
    rtu.name = "rtu";
    addPoints(rtu, 'F', 100, 9);
    addPoints(rtu, 'R', 10, 2);
    return rtu;
}

} // namespace

TEST(Forecast, CountsTheBitsOfACharacter) {
    EXPECT_EQ(host::bitsPerCharacter({"x", 9600, SerialEnd::Parity::None, 1, 8}), 10U);
    EXPECT_EQ(host::bitsPerCharacter({"x", 9600, SerialEnd::Parity::Even, 1, 8}), 11U);
    EXPECT_EQ(host::bitsPerCharacter({"x", 9600, SerialEnd::Parity::Odd, 2, 8}), 12U);
}

TEST(Forecast, CountsDataModeTelegramsBothWays) {
    const Channel channel = lineWith(rtuWithNineFlagsAndTwoRegisters(), LineType::Serial);
    const LineForecast line = host::forecastLine(channel);
    const host::RtuForecast& rtu = line.rtus.at(0);
    // 9 bytes out and 2 + 2 + 2 back; 9 out and 2 + 8 + 2 back; at 9600 baud 10 bits take 1.0417 ms.
    EXPECT_EQ(rtu.status.telegrams, 1U);
    EXPECT_EQ(rtu.status.bytes, 15U);
    EXPECT_NEAR(rtu.status.milliseconds, 15 * 10 / 9.6 + 10, 0.001);
    EXPECT_EQ(rtu.analog.bytes, 21U);
    EXPECT_EQ(rtu.integrity.telegrams, 2U);
    EXPECT_EQ(rtu.integrity.bytes, 36U);
    EXPECT_NEAR(rtu.integrity.milliseconds, 36 * 10 / 9.6 + 10, 0.001);
}

TEST(Forecast, CountsTheBreakBeforeEachTelegram) {
    host::Rtu rtu = rtuWithNineFlagsAndTwoRegisters();
    rtu.transmitType = host::TransmitType::Break;
    rtu.breakDelayMs = 12;
    const Channel channel = lineWith(rtu, LineType::Serial);
    const host::RtuForecast forecast = host::forecastLine(channel).rtus.at(0);
    // 7 out and 2 + 2 back; 7 out and 8 + 2 back.
    EXPECT_EQ(forecast.status.bytes, 11U);
    EXPECT_EQ(forecast.analog.bytes, 17U);
    EXPECT_NEAR(forecast.integrity.milliseconds, 28 * 10 / 9.6 + 2 * 12 + 10, 0.001);
}

TEST(Forecast, CountsDatagramBytesOnEthernet) {
    const Channel channel = lineWith(rtuWithNineFlagsAndTwoRegisters(), LineType::Ethernet);
    const host::RtuForecast forecast = host::forecastLine(channel).rtus.at(0);
    EXPECT_EQ(forecast.status.bytes, 16U + 13U);
    EXPECT_EQ(forecast.analog.bytes, 16U + 19U);
}

TEST(Forecast, AddsUpTheShareOfTheLine) {
    host::Rtu rtu = rtuWithNineFlagsAndTwoRegisters();
    rtu.scan = {std::chrono::milliseconds(10'000), std::chrono::milliseconds(1'000),
                std::chrono::milliseconds(2'000)};
    const Channel channel = lineWith(rtu, LineType::Serial);
    const LineForecast line = host::forecastLine(channel);
    EXPECT_NEAR(line.share, 47.5 / 10'000 + 25.625 / 1'000 + 31.875 / 2'000, 0.0001);
}

TEST(Forecast, TellsWhetherThePeriodsFit) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 0, 1'000);
    host::Site site{{lineWith(rtu, LineType::Serial)}};
    EXPECT_THAT(describeSite(site), HasSubstr("the scan periods do not fit"));
    site.channels[0].rtus[0].scan.analog = std::chrono::seconds(60);
    EXPECT_THAT(describeSite(site), HasSubstr("the scan periods fit\n"));
}

// Two telegrams of 10 ms each and the driver's rest, once a minute; one of each kind and the rest, 1 s and 2
// s.
TEST(Forecast, CountsTheTimeInWhichEthernetAnswersAreExpected) {
    Channel channel = lineWith(rtuWithNineFlagsAndTwoRegisters(), LineType::Ethernet);
    EXPECT_NEAR(host::forecastLine(channel).share, 30.0 / 60'000 + 20.0 / 1'000 + 20.0 / 2'000, 0.0001);
    EXPECT_THAT(
        host::describeSite({{channel}}),
        HasSubstr("3 % of the line's time, with 10 ms for each answer to come: the scan periods fit"));
    channel.expectedAnswer = std::chrono::milliseconds(600);
    EXPECT_THAT(host::describeSite({{channel}}),
                HasSubstr("with 600 ms for each answer to come: the scan periods "
                          "fit, with little to spare"));
    channel.expectedAnswer = std::chrono::milliseconds(1'000);
    EXPECT_THAT(host::describeSite({{channel}}),
                HasSubstr("do not fit; make them 1.55 times as long at least\n"));
}

TEST(Forecast, CountsTheTimeInWhichSerialAnswersAreExpectedWhenItIsTold) {
    Channel channel = lineWith(rtuWithNineFlagsAndTwoRegisters(), LineType::Serial);
    EXPECT_THAT(host::describeSite({{channel}}), HasSubstr("before the controllers' own delays: "));
    const double before = host::forecastLine(channel).share;
    channel.expectedAnswer = std::chrono::milliseconds(20);
    EXPECT_NEAR(host::forecastLine(channel).share - before, 40.0 / 60'000 + 20.0 / 1'000 + 20.0 / 2'000,
                0.0001);
    EXPECT_THAT(host::describeSite({{channel}}), HasSubstr("with 20 ms for each answer to come: "));
}

TEST(Forecast, TellsPointsThatShareAnElementInTwoFormats) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 30, 2);
    addPoints(rtu, 'R', 30, 2); // P2 and P3
    rtu.points[3].isFloat = true;
    EXPECT_THAT(
        host::describeSite({{lineWith(rtu, LineType::Ethernet)}}),
        AllOf(HasSubstr("    R31 is read once and shown twice: by \"P1\" as an integer, by \"P3\" as a "
                        "float; a command to either changes both\n"),
              Not(HasSubstr("R30 is read once"))));
}

TEST(Forecast, TellsPointsThatShareAnElementAsFloatAndAsIeee) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 30, 1);
    addPoints(rtu, 'R', 30, 1);
    rtu.points[0].isIeee = true;
    rtu.points[1].isFloat = true;
    EXPECT_THAT(
        host::describeSite({{lineWith(rtu, LineType::Ethernet)}}),
        HasSubstr("    R30 is read once and shown twice: by \"P0\" as an IEEE 754 number, by \"P1\" as a "
                  "float; a command to either changes both\n"));
}

TEST(Forecast, TellsWhatBecomesOfRawNumbers) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 30, 4);
    host::Engineering engineering;
    engineering.unit = "kW";
    rtu.points[1].engineering = std::make_shared<const host::Engineering>(engineering);
    rtu.points[2].engineering = rtu.points[1].engineering;
    rtu.points[2].isIeee = true;
    engineering.scaling = host::Scaling(0.01, -20);
    engineering.unit = "m";
    engineering.decimals = 2;
    engineering.deadband = 0.5;
    rtu.points[3].engineering = std::make_shared<const host::Engineering>(engineering);
    EXPECT_THAT(
        host::describeSite({{lineWith(rtu, LineType::Ethernet)}}),
        AllOf(Not(HasSubstr("\"P0\"")), HasSubstr("    \"P1\" is R31 in kW\n"),
              HasSubstr("    \"P2\" is R32 as an IEEE 754 number in kW\n"),
              HasSubstr("    \"P3\" is R33 x 0.01 - 20 m: 1000 is -10.00 m; changes below 0.5 m are not "
                        "told\n")));
}

TEST(Forecast, TellsWhatBecomesOfRawNumbersForTheFirstPoints) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 0, 23);
    for (Point& point : rtu.points)
        point.isIeee = true;
    EXPECT_THAT(host::describeSite({{lineWith(rtu, LineType::Ethernet)}}),
                AllOf(HasSubstr("\"P19\" is R19 as an IEEE 754 number\n"), Not(HasSubstr("\"P20\"")),
                      HasSubstr("    3 more points with a unit, scale or format\n")));
}

TEST(Forecast, TellsHowOftenAClockIsSet) {
    host::Rtu rtu = rtuWithNineFlagsAndTwoRegisters();
    rtu.timeSync = std::chrono::hours(24);
    const host::Site site{{lineWith(rtu, LineType::Serial)}};
    EXPECT_THAT(describeSite(site), HasSubstr("    clock set      every   24 h\n"));
}

TEST(Forecast, TellsHiddenPointsAndRewrittenAddresses) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 0, 128);
    rtu.points[7].writtenAddress = std::make_shared<const std::string>("r007");
    const host::Site site{{lineWith(rtu, LineType::Ethernet)}};
    EXPECT_THAT(describeSite(site), HasSubstr("address r007 of \"P7\" is taken as R7\n"));
    EXPECT_THAT(describeSite(site), HasSubstr("hidden point R128 added"));
    EXPECT_THAT(describeSite(site), HasSubstr("analog poll"));
    EXPECT_THAT(describeSite(site), Not(HasSubstr("status poll")));
}

TEST(Forecast, TellsTheTelegramsOfAControllerWithLimits) {
    host::Rtu rtu;
    addPoints(rtu, 'F', 0, 3);
    addPoints(rtu, 'R', 0, 50);
    rtu.limits.readWords = 20;
    const host::Site site{{lineWith(rtu, LineType::Ethernet)}};
    EXPECT_THAT(describeSite(site), HasSubstr("   3 telegrams,    281 bytes"));
    EXPECT_THAT(describeSite(site), HasSubstr("    telegrams      F0..2 R0..19 R40..49 R20..39\n"));
}

TEST(Forecast, WrapsTheListOfTelegrams) {
    host::Rtu rtu;
    addPoints(rtu, 'R', 0, 40);
    rtu.limits.readWords = 1;
    const host::Site site{{lineWith(rtu, LineType::Ethernet)}};
    EXPECT_THAT(describeSite(site), HasSubstr("\n                   R5 R7 R9 R11"));
}
