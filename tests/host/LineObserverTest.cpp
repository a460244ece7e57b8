#include "ObservedLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using host::Answer;
using host::Exchange;
using host::TelegramBytes;
using testing::ElementsAre;
using namespace std::chrono_literals;
using namespace telegrams;

namespace {

TelegramBytes bytesOf(const QByteArray& bytes) {
    return {bytes.begin(), bytes.end()};
}

// The line with somebody who looks at its exchanges.
struct WatchedLine : ObservedLine {
    explicit WatchedLine(const host::Site& observedSite) : ObservedLine(observedSite) {}

    std::vector<Exchange> seen;
    const std::unique_ptr<host::ExchangeFeed::Watch> watch =
        feed.watch([this](const Exchange& exchange) { seen.push_back(exchange); });
};

} // namespace

TEST(LineObserver, MakesAnExchangeOfATelegramAndItsAnswer) {
    const host::Site site = smallSite();
    WatchedLine line(site);
    const auto before = std::chrono::system_clock::now();
    line.send(readTwoRegisters);
    std::this_thread::sleep_for(5ms);
    line.receive(twoRegisters.left(5));
    line.receive(twoRegisters.mid(5));
    EXPECT_TRUE(line.seen.empty()) << "more may come";
    line.reportAnswer();
    const auto after = std::chrono::system_clock::now();
    ASSERT_EQ(line.seen.size(), 1U);
    const Exchange& exchange = line.seen[0];
    EXPECT_EQ(exchange.channelId, 4);
    EXPECT_FALSE(exchange.onSecondary);
    EXPECT_EQ(exchange.framing, host::Framing::Ethernet);
    EXPECT_EQ(exchange.station, 5U);
    EXPECT_EQ(exchange.sent, bytesOf(readTwoRegisters));
    EXPECT_EQ(exchange.received, bytesOf(twoRegisters));
    EXPECT_EQ(exchange.answer, Answer::Good);
    EXPECT_FALSE(exchange.hasLineFailed);
    EXPECT_GE(exchange.roundTrip, 5ms);
    EXPECT_LT(exchange.roundTrip, 5s);
    EXPECT_GE(exchange.sentAt, before - 1ms);
    EXPECT_LE(exchange.sentAt, after - exchange.roundTrip + 1ms);
}

TEST(LineObserver, EndsAnExchangeWithTheNextTelegram) {
    const host::Site site = smallSite();
    WatchedLine line(site);
    line.send(readTwoRegisters);
    line.receive(refusal);
    line.send(readTwoRegisters);
    ASSERT_EQ(line.seen.size(), 1U);
    EXPECT_EQ(line.seen[0].answer, Answer::Refused);
    line.reportFailure();
    ASSERT_EQ(line.seen.size(), 2U);
    EXPECT_EQ(line.seen[1].answer, Answer::Silent);
    EXPECT_EQ(line.seen[1].roundTrip, 0us);
    EXPECT_TRUE(line.seen[1].received.empty());
}

TEST(LineObserver, TellsWhatWasThrownAwayWithTheTelegramThatCameAfterIt) {
    const host::Site site = smallSite();
    WatchedLine line(site);
    line.send(readTwoRegisters);
    line.reportFailure();
    line.discard(lateAnswer);
    line.send(readTwoRegisters);
    line.receive(twoRegisters);
    line.reportAnswer();
    line.send(readTwoRegisters);
    line.reportFailure();
    ASSERT_EQ(line.seen.size(), 3U);
    EXPECT_TRUE(line.seen[0].discarded.empty());
    EXPECT_EQ(line.seen[1].discarded, bytesOf(lateAnswer));
    EXPECT_TRUE(line.seen[2].discarded.empty());
}

TEST(LineObserver, NamesTheEndInUse) {
    const host::Site site = smallSite();
    WatchedLine line(site);
    LinkObserver& secondary = line.wire().secondaryEnd();
    secondary.linkOpened(0);
    secondary.telegramSent(readTwoRegisters.constData(), readTwoRegisters.size(), LinkObserver::Clock::now());
    line.reportFailure();
    ASSERT_EQ(line.seen.size(), 1U);
    EXPECT_TRUE(line.seen[0].onSecondary);
    EXPECT_TRUE(line.ended[0].onSecondary);
    line.open();
    line.send(readTwoRegisters);
    line.reportFailure();
    EXPECT_FALSE(line.seen[1].onSecondary);
    EXPECT_FALSE(line.ended[1].onSecondary);
}

TEST(LineObserver, TellsEachTryToOpenTheLine) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.opened.clear();
    line.open(13);
    line.wire().secondaryEnd().linkOpened(0);
    EXPECT_THAT(line.opened, ElementsAre(std::pair(false, 13), std::pair(true, 0)));
}

TEST(LineObserver, MarksAnExchangeWhoseLinkFailed) {
    const host::Site site = smallSite();
    WatchedLine line(site);
    line.send(readTwoRegisters);
    line.wire().primaryEnd().receiveFailed();
    line.reportFailure();
    line.send(readTwoRegisters);
    line.reportFailure();
    ASSERT_EQ(line.seen.size(), 2U);
    EXPECT_TRUE(line.seen[0].hasLineFailed);
    EXPECT_FALSE(line.seen[1].hasLineFailed);
}

TEST(LineObserver, KeepsABoundOfALineThatNeverFallsSilent) {
    const host::Site site = smallSite();
    WatchedLine line(site);
    line.send(readTwoRegisters);
    for (int i = 0; i < 1'000; ++i) {
        line.receive(QByteArray(100, 'x'));
        line.discard(QByteArray(100, 'y'));
    }
    line.send(readTwoRegisters);
    line.reportFailure();
    EXPECT_EQ(line.seen[0].received.size(), 4'096U);
    EXPECT_EQ(line.seen[1].discarded.size(), 4'096U);
}

TEST(LineObserver, KnowsTheThreadThatUsesTheLinks) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    EXPECT_TRUE(line.wire().isOnItsThread());
    bool elsewhere = true;
    std::thread([&] { elsewhere = line.wire().isOnItsThread(); }).join();
    EXPECT_FALSE(elsewhere);
}

TEST(ExchangeFeed, HandsEachExchangeToAllWhoWatch) {
    host::ExchangeFeed feed;
    EXPECT_FALSE(feed.isWatched());
    int first = 0;
    int second = 0;
    auto one = feed.watch([&first](const Exchange&) { ++first; });
    {
        const auto other = feed.watch([&second](const Exchange&) { ++second; });
        feed.publish({});
    }
    EXPECT_TRUE(feed.isWatched());
    feed.publish({});
    one.reset();
    EXPECT_FALSE(feed.isWatched());
    feed.publish({});
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 1);
}
