#include "LinkCalls.h"
#include "NotingObserver.h"
#include "UdpController.h"

#include <HalvexDriverLink/CLinkUdp.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

using testing::ElementsAre;
using namespace std::chrono_literals;

namespace {

constexpr int ampleMs = 5000; // for what is certain to come

struct ObservedUdp : testing::Test {
    ObservedUdp() { link.setObserver(&observer); }

    UdpController controller;
    CLinkUdp link{{"127.0.0.1", controller.port()}};
    NotingObserver observer;
};

} // namespace

TEST_F(ObservedUdp, TellsOpenTelegramAndAnswer) {
    EXPECT_EQ(link.open(), 0);
    EXPECT_EQ(send(link, hex("01 02")), 0);
    EXPECT_EQ(toHex(controller.receive()), "01 02");
    controller.answer(hex("03 04 05"));
    EXPECT_EQ(receive(link, 16, ampleMs), came("03 04 05"));
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", "sent 01 02", "received 03 04 05"));
}

TEST_F(ObservedUdp, TellsTheMomentsBetweenWhichTheAnswerCame) {
    EXPECT_EQ(link.open(), 0);
    const auto before = LinkObserver::Clock::now();
    EXPECT_EQ(send(link, hex("01")), 0);
    const auto behindSend = LinkObserver::Clock::now();
    controller.receive();
    std::this_thread::sleep_for(20ms);
    controller.answer(hex("02"));
    EXPECT_EQ(receive(link, 16, ampleMs), came("02"));
    EXPECT_GE(observer.sentAt, before);
    EXPECT_LE(observer.sentAt, behindSend);
    EXPECT_GE(observer.receivedAt, behindSend + 20ms);
    EXPECT_LE(observer.receivedAt, LinkObserver::Clock::now());
}

// A late answer is not the answer to the telegram that follows it.
TEST_F(ObservedUdp, TellsWhatIsThrownAwayBeforeTheTelegram) {
    EXPECT_EQ(link.open(), 0);
    EXPECT_EQ(send(link, hex("01")), 0);
    controller.receive();
    controller.answer(hex("0A"));
    controller.answer(hex("0B 0B"));
    EXPECT_EQ(send(link, hex("02")), 0);
    EXPECT_THAT(observer.notes,
                ElementsAre("opened 0", "sent 01", "discarded 0A", "discarded 0B 0B", "sent 02"));
}

TEST_F(ObservedUdp, TellsNothingOfAWaitInWhichNothingCame) {
    EXPECT_EQ(link.open(), 0);
    EXPECT_EQ(receive(link, 16, 1), nothing);
    EXPECT_THAT(observer.notes, ElementsAre("opened 0"));
}

TEST_F(ObservedUdp, TellsSendAndReceiveThatFailOnAClosedLink) {
    EXPECT_EQ(send(link, hex("01")), -1);
    EXPECT_EQ(receive(link, 16, ampleMs), failed);
    EXPECT_THAT(observer.notes, ElementsAre("not sent 01", "failed"));
}

TEST_F(ObservedUdp, TellsWhyAnOpenHasFailed) {
    CLinkUdp unknown({std::string(300, 'x'), 5050});
    unknown.setObserver(&observer);
    const int result = unknown.open();
    EXPECT_GT(result, 0);
    EXPECT_THAT(observer.notes, ElementsAre("opened " + std::to_string(result)));
}

TEST_F(ObservedUdp, TellsEachOpen) {
    EXPECT_EQ(link.open(), 0);
    link.close();
    EXPECT_EQ(link.open(), 0);
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", "opened 0"));
}
