#include "services/capture/CapturedDatagrams.h"

#include "Exchanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::Answer;
using host::CapturedDatagrams;
using host::controllerEnd;
using host::Datagram;
using host::Exchange;
using host::Framing;
using testing::ElementsAre;

namespace {

constexpr auto dataMode = Framing::DataMode;
constexpr auto breakMode = Framing::BreakMode;
constexpr const char* dataModeRead = "B5 00 05 06 01 00 0A 19 67";
constexpr const char* breakModeWrite = "05 0D 03 00 C8 00 01 46 41";

// "10.0.0.1:49152 > 10.1.1.5:5050"
std::string addressText(const host::Ipv4End& end) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += std::to_string(end.address >> shift & 0xFF) + (shift == 0 ? ":" : ".");
    return text + std::to_string(end.port);
}

std::vector<std::string> payloads(const std::vector<Datagram>& datagrams) {
    std::vector<std::string> texts;
    for (const Datagram& datagram : datagrams)
        texts.push_back((datagram.to.port == 5050 ? "> " : "< ") + text(datagram.payload));
    return texts;
}

std::vector<std::string> payloadsOf(const Exchange& exchange) {
    return payloads(CapturedDatagrams().make(exchange));
}

} // namespace

TEST(CapturedDatagrams, AddressIsChannelEndAndStation) {
    EXPECT_EQ(addressText(controllerEnd(1, false, 5)), "10.1.1.5:5050");
    EXPECT_EQ(addressText(controllerEnd(255, true, 254)), "10.255.2.254:5050");
    EXPECT_EQ(addressText(controllerEnd(256, false, 0)), "10.0.3.0:5050");
    EXPECT_EQ(addressText(controllerEnd(257, true, 5)), "10.1.4.5:5050");
    EXPECT_EQ(addressText(controllerEnd(127 * 256 - 1, true, 5)), "10.255.254.5:5050");
    EXPECT_EQ(addressText(controllerEnd(127 * 256, false, 5)), "10.0.1.5:5050");
}

TEST(CapturedDatagrams, GoBetweenHostAndController) {
    Exchange exchange = readOfTwoRegisters();
    exchange.onSecondary = true;
    const std::vector<Datagram> datagrams = CapturedDatagrams().make(exchange);
    ASSERT_EQ(datagrams.size(), 2U);
    EXPECT_EQ(addressText(datagrams[0].from), "10.0.0.1:49152");
    EXPECT_EQ(addressText(datagrams[0].to), "10.1.2.5:5050");
    EXPECT_EQ(addressText(datagrams[1].from), "10.1.2.5:5050");
    EXPECT_EQ(addressText(datagrams[1].to), "10.0.0.1:49152");
}

TEST(CapturedDatagrams, CarryTheTimesOfSendingAndOfTheLastByte) {
    const Exchange exchange = readOfTwoRegisters();
    const std::vector<Datagram> datagrams = CapturedDatagrams().make(exchange);
    ASSERT_EQ(datagrams.size(), 2U);
    EXPECT_EQ(datagrams[0].time, exchange.sentAt);
    EXPECT_EQ(datagrams[1].time, exchange.sentAt + std::chrono::microseconds(4'500));
}

TEST(CapturedDatagrams, OfEthernetAreTheTelegramsThemselves) {
    EXPECT_THAT(payloadsOf(readOfTwoRegisters()),
                ElementsAre("> 00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC",
                            "< 00 00 00 13 01 00 00 00 01 00 00 00 07 FF FF FF FE 0B 2E"));
}

TEST(CapturedDatagrams, OfSilenceAreTheRequestAlone) {
    EXPECT_THAT(payloadsOf(exchangeOf(dataMode, dataModeRead, "", Answer::Silent)),
                ElementsAre("> 00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC"));
}

TEST(CapturedDatagrams, OfWhatWasThrownAwayStandBeforeTheRequest) {
    Exchange exchange = exchangeOf(dataMode, dataModeRead, "", Answer::Silent);
    exchange.discarded = bytes("B5 02 00 00 23 F4");
    EXPECT_THAT(payloadsOf(exchange),
                ElementsAre("< B5 02 00 00 23 F4", "> 00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC"));
}

TEST(CapturedDatagrams, OfSerialLinesCountOnForEachChannel) {
    CapturedDatagrams datagrams;
    Exchange exchange = exchangeOf(breakMode, breakModeWrite, "06");
    Exchange elsewhere = exchange;
    elsewhere.channelId = 2;
    datagrams.make(exchange);
    EXPECT_THAT(payloads(datagrams.make(elsewhere)),
                ElementsAre("> 00 00 00 12 01 00 00 00 00 05 0D 03 00 C8 00 01 D9 46",
                            "< 00 00 00 0D 01 00 00 00 02 00 00 80 65"));
    for (int i = 0; i < 65535; ++i) {
        const std::vector<std::string> made = payloads(datagrams.make(exchange));
        if (i == 0) {
            EXPECT_EQ(made[0].substr(0, 28), "> 00 00 00 12 01 00 00 01 00");
            EXPECT_EQ(made[1].substr(0, 28), "< 00 00 00 0D 01 00 00 01 02");
        }
    }
    EXPECT_EQ(payloads(datagrams.make(exchange))[0].substr(0, 28), "> 00 00 00 12 01 00 00 00 00")
        << "0 follows 65535";
}

TEST(CapturedDatagrams, OfARefusalAreAnAcknowledge) {
    EXPECT_THAT(payloadsOf(exchangeOf(breakMode, breakModeWrite, "15", Answer::Refused)),
                ElementsAre(testing::_, "< 00 00 00 0D 01 00 00 00 02 00 01 90 44"));
}

TEST(CapturedDatagrams, OfADamagedAnswerAreItsBytes) {
    EXPECT_THAT(payloadsOf(exchangeOf(dataMode, dataModeRead, "B5 01 00 00", Answer::Damaged)),
                ElementsAre(testing::_, "< B5 01 00 00"));
}

// In the form of Ethernet it would look like the answer to this request.
TEST(CapturedDatagrams, OfAnAnswerToAnotherTelegramAreItsBytes) {
    EXPECT_THAT(payloadsOf(exchangeOf(dataMode, dataModeRead, "B5 02 00 00 23 F4", Answer::Foreign)),
                ElementsAre(testing::_, "< B5 02 00 00 23 F4"));
}

TEST(CapturedDatagrams, OfARequestThatIsNoTelegramAreTheBytesOfBoth) {
    EXPECT_THAT(payloadsOf(exchangeOf(dataMode, "01 02 03", "B5 02 00 00 23 F4")),
                ElementsAre("> 01 02 03", "< B5 02 00 00 23 F4"));
}

TEST(CapturedDatagrams, OfMoreThanADatagramHoldsAreSeveral) {
    Exchange exchange = exchangeOf(dataMode, dataModeRead, "", Answer::Silent);
    exchange.discarded = host::TelegramBytes(2 * host::largestPayload, 1);
    exchange.discarded.push_back(2);
    const std::vector<Datagram> datagrams = CapturedDatagrams().make(exchange);
    ASSERT_EQ(datagrams.size(), 4U);
    EXPECT_EQ(datagrams[0].payload.size(), host::largestPayload);
    EXPECT_EQ(datagrams[1].payload.size(), host::largestPayload);
    EXPECT_EQ(text(datagrams[2].payload), "02");
}

TEST(CapturedDatagrams, AreCountedWithoutBeingMade) {
    Exchange exchange = exchangeOf(dataMode, dataModeRead, "", Answer::Silent);
    EXPECT_EQ(countDatagrams(exchange), 1U);
    exchange.received = bytes("B5");
    EXPECT_EQ(countDatagrams(exchange), 2U);
    exchange.discarded = host::TelegramBytes(host::largestPayload, 1);
    EXPECT_EQ(countDatagrams(exchange), 3U);
    exchange.discarded.push_back(1);
    EXPECT_EQ(countDatagrams(exchange), 4U);
}
