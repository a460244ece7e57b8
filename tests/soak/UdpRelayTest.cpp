#include "UdpRelay.h"

#include "Printers.h"
#include "UdpController.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace soak;

namespace {

Rates losingEverything() {
    Rates rates;
    rates.loss = 1;
    return rates;
}

} // namespace

TEST(UdpRelay, PassesRequestsAndAnswersOn) {
    UdpController controller;
    UdpController host;
    UdpRelay relay;
    const std::uint16_t port = relay.addLine(controller.port());
    host.send(hex("01 02 03"), port);
    EXPECT_EQ(controller.receive(), hex("01 02 03"));
    controller.answer(hex("04 05"));
    EXPECT_EQ(host.receive(), hex("04 05"));
    controller.answer({});
    controller.answer(hex("06"));
    EXPECT_EQ(host.receive(), QByteArray());
    EXPECT_EQ(host.receive(), hex("06"));
}

TEST(UdpRelay, AnswersTheSocketThatTheHostHasSentFromLast) {
    UdpController controller;
    UdpController before;
    UdpController host;
    UdpRelay relay;
    const std::uint16_t port = relay.addLine(controller.port());
    before.send(hex("01"), port);
    EXPECT_EQ(controller.receive(), hex("01"));
    host.send(hex("02"), port);
    EXPECT_EQ(controller.receive(), hex("02"));
    controller.answer(hex("03"));
    EXPECT_EQ(host.receive(), hex("03"));
}

TEST(UdpRelay, KeepsItsLinesApart) {
    UdpController first;
    UdpController second;
    UdpController host;
    UdpRelay relay;
    const std::uint16_t toFirst = relay.addLine(first.port());
    const std::uint16_t toSecond = relay.addLine(second.port());
    host.send(hex("02"), toSecond);
    host.send(hex("01"), toFirst);
    EXPECT_EQ(first.receive(), hex("01"));
    EXPECT_EQ(second.receive(), hex("02"));
}

TEST(UdpRelay, ImpairsEachDirectionByItselfAndHeals) {
    UdpController controller;
    UdpController host;
    UdpRelay relay;
    const std::uint16_t port = relay.addLine(controller.port());
    relay.impair({}, losingEverything());
    host.send(hex("01"), port);
    EXPECT_EQ(controller.receive(), hex("01"));
    controller.answer(hex("02"));
    while (relay.counts().impaired == 0)
        std::this_thread::yield();
    relay.heal();
    controller.answer(hex("03"));
    EXPECT_EQ(host.receive(), hex("03"));
    const RelayCounts counts = relay.counts();
    EXPECT_EQ(counts.toController, 1U);
    EXPECT_EQ(counts.toHost, 2U);
    EXPECT_EQ(counts.impaired, 1U);
}

TEST(UdpRelay, HasSentWhatItHeldBackWhenItIsHealed) {
    UdpController controller;
    UdpController host;
    UdpRelay relay;
    const std::uint16_t port = relay.addLine(controller.port());
    Rates overtaken;
    overtaken.reordering = 1;
    overtaken.overtakenBy = std::chrono::milliseconds(100);
    relay.impair(overtaken);
    host.send(hex("01"), port);
    while (relay.counts().toController == 0)
        std::this_thread::yield();
    relay.heal();
    host.send(hex("02"), port);
    EXPECT_EQ(controller.receive(), hex("01"));
    EXPECT_EQ(controller.receive(), hex("02"));
}

TEST(UdpRelay, ShowsEveryTelegramBeforeAnythingBefallsIt) {
    UdpController controller;
    UdpController host;
    std::atomic<int> requests{0};
    UdpRelay relay(1, [&](int line, Direction direction, const QByteArray& telegram, Clock::time_point) {
        requests += line == 0 && direction == Direction::ToController && telegram == hex("01") ? 1 : 0;
    });
    const std::uint16_t port = relay.addLine(controller.port());
    relay.impair(losingEverything());
    host.send(hex("01"), port);
    while (relay.counts().impaired == 0)
        std::this_thread::yield();
    EXPECT_EQ(requests, 1);
}
