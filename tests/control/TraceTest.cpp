#include "FakeHost.h"
#include "Hex.h"
#include "runtime/ExchangeText.h"
#include "services/control/ControlTrace.h"
#include "values/ValueText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

TelegramBytes bytesOf(const char* text) {
    const QByteArray bytes = hex(text);
    return {bytes.begin(), bytes.end()};
}

// Registers 10 and 11 of station 5 on "waterworks", read at a fixed moment.
Exchange readTwoRegisters() {
    Exchange exchange;
    exchange.channelId = 4;
    exchange.station = 5;
    exchange.sent = bytesOf("00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC");
    exchange.received = bytesOf("00 00 00 13 01 00 00 00 01 00 00 00 0C 00 00 00 0D 00 00");
    exchange.answer = Answer::Damaged;
    exchange.sentAt = std::chrono::system_clock::time_point(1'000'000'000'125ms);
    exchange.roundTrip = 2'340us;
    return exchange;
}

class Trace : public testing::Test {
protected:
    std::vector<std::string> told(ClientId client) {
        sent.clear();
        trace.tell();
        return sent[client];
    }

    static Exchange onChannel(int channelId) {
        Exchange exchange = readTwoRegisters();
        exchange.channelId = channelId;
        return exchange;
    }

    const Site site = controlSite();
    ExchangeFeed feed;
    std::map<ClientId, std::vector<std::string>> sent;
    std::set<ClientId> busy; // have no room
    ControlTrace trace{
        site, feed,
        [this](ClientId client, const QByteArray& line) { sent[client].push_back(line.toStdString()); },
        [this](ClientId client) { return busy.count(client) == 0; }};
};

} // namespace

TEST(ExchangeText, TellsAnExchangeInWordsAndHex) {
    const std::vector<std::string> lines = exchangeLines(exchangeAsJson(controlSite(), readTwoRegisters()));
    EXPECT_THAT(lines, ElementsAre(localTimeText(1'000'000'000'125) +
                                       "  waterworks, station 5  << read 2 registers from R10",
                                   "    00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC",
                                   localTimeText(1'000'000'000'127) +
                                       "  waterworks, station 5  >> damaged: wrong checksum (2.34 ms)",
                                   "    00 00 00 13 01 00 00 00 01 00 00 00 0C 00 00 00 0D 00 00"));
}

TEST(ExchangeText, ShowsNothingAsReceivedThatDidNotCome) {
    Exchange exchange = readTwoRegisters();
    exchange.received.clear();
    exchange.roundTrip = 0us;
    exchange.answer = Answer::Silent;
    exchange.hasLineFailed = true;
    exchange.onSecondary = true;
    const std::vector<std::string> lines = exchangeLines(exchangeAsJson(controlSite(), exchange));
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_THAT(lines[2], HasSubstr("waterworks (secondary), station 5  >> no answer, the line failed"));
}

TEST(ExchangeText, ShowsWhatWasThrownAwayFirst) {
    Exchange exchange = readTwoRegisters();
    exchange.discarded = TelegramBytes(40, 0xAB);
    const std::vector<std::string> lines = exchangeLines(exchangeAsJson(controlSite(), exchange));
    ASSERT_THAT(lines, SizeIs(7));
    EXPECT_THAT(lines[0], HasSubstr("thrown away unread"));
    EXPECT_EQ(lines[1].size(), 4U + 32 * 3 - 1);
    EXPECT_EQ(lines[2], "    AB AB AB AB AB AB AB AB");
    EXPECT_THAT(lines[3], HasSubstr("<<"));
}

TEST(ExchangeText, GivesProgramsEachPartOfAnExchange) {
    const QJsonObject object = exchangeAsJson(controlSite(), readTwoRegisters());
    EXPECT_EQ(object.value(QStringLiteral("time")).toString(), QStringLiteral("2001-09-09T01:46:40.125Z"));
    EXPECT_EQ(object.value(QStringLiteral("channel")).toString(), QStringLiteral("waterworks"));
    EXPECT_EQ(object.value(QStringLiteral("end")).toString(), QStringLiteral("primary"));
    EXPECT_EQ(object.value(QStringLiteral("meaning")).toString(), QStringLiteral("damaged"));
    EXPECT_EQ(object.value(QStringLiteral("round_trip_ms")).toDouble(), 2.34);
    EXPECT_EQ(object.value(QStringLiteral("line_failed")).toBool(true), false);
    EXPECT_EQ(object.value(QStringLiteral("discarded")).toString(), QString());
}

TEST_F(Trace, TellsEachClientTheExchangesOfItsChannels) {
    trace.begin(1, {4});
    trace.begin(2, {4, 5});
    feed.publish(onChannel(5));
    feed.publish(onChannel(4));
    EXPECT_THAT(told(1), ElementsAre(StartsWith(R"({"exchange":{)")));
    EXPECT_THAT(sent[1][0], HasSubstr(R"("channel":"waterworks")"));
    EXPECT_THAT(sent[2], SizeIs(2));
    EXPECT_THAT(told(1), IsEmpty()) << "each is told once";
}

TEST_F(Trace, LooksAtNoExchangeWhileNobodyTraces) {
    EXPECT_FALSE(feed.isWatched());
    trace.begin(1, {4});
    trace.begin(2, {4});
    EXPECT_TRUE(feed.isWatched());
    trace.forget(1);
    EXPECT_TRUE(feed.isWatched());
    trace.forget(2);
    EXPECT_FALSE(feed.isWatched());
    EXPECT_FALSE(trace.isTracing(2));
}

TEST_F(Trace, TellsAClientNothingFromBeforeItCame) {
    trace.begin(1, {4});
    feed.publish(onChannel(4));
    trace.begin(2, {4});
    EXPECT_THAT(told(2), IsEmpty());
}

TEST_F(Trace, TellsASlowClientHowManyItHasLost) {
    trace.begin(1, {4});
    busy.insert(1);
    feed.publish(onChannel(4));
    feed.publish(onChannel(4));
    feed.publish(onChannel(5)); // none of its own
    EXPECT_THAT(told(1), IsEmpty());
    busy.erase(1);
    feed.publish(onChannel(4));
    EXPECT_THAT(told(1), ElementsAre(R"({"lost":2})", StartsWith(R"({"exchange":)")));
    EXPECT_THAT(told(1), IsEmpty());
}

TEST_F(Trace, CountsWhatCameFasterThanItWasFetched) {
    trace.begin(1, {4});
    for (std::size_t i = 0; i < ExchangeQueue::mostWaiting + 5; ++i)
        feed.publish(onChannel(4));
    EXPECT_THAT(told(1), SizeIs(ExchangeQueue::mostWaiting));
    EXPECT_THAT(told(1), ElementsAre(R"({"lost":5})"));
}

TEST_F(Trace, FindsChannelsByTheirNames) {
    EXPECT_THAT(trace.find({}).channelIds, ElementsAre(4, 5));
    EXPECT_THAT(trace.find({"reservoirs"}).channelIds, ElementsAre(5));
    EXPECT_THAT(trace.find({"reservoirs", "nowhere"}).fault, HasSubstr("no channel \"nowhere\""));
}
