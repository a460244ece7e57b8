#include "LinkCalls.h"

#include <HalvexDriverLink/CLinkSerial.h>
#include <PtyPair.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr int longMs = 60000; // the tests end long before: half of it tells "at once" from "at the time-out"

class RxMessage : public testing::Test {
protected:
    RxMessage() { EXPECT_EQ(link.open(), 0); }

    // Writes the bytes one by one, `pause` between them, while the test waits for them.
    std::thread drip(const QByteArray& bytes, milliseconds pause) {
        return std::thread([this, bytes, pause] {
            for (const char byte : bytes) {
                line.write(QByteArray(1, byte));
                std::this_thread::sleep_for(pause);
            }
        });
    }

    milliseconds elapsed() const {
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    }

    PtyPair line;
    CLinkSerial link{{line.device()}};
    const steady_clock::time_point start = steady_clock::now();
};

} // namespace

TEST_F(RxMessage, WantedLengthEndsAtOnce) {
    line.write(hex("B5 02 00 00 5C 9D"));
    EXPECT_EQ(rxMessage(link, 6, longMs, longMs), came("B5 02 00 00 5C 9D"));
    EXPECT_LT(elapsed(), milliseconds(longMs / 2));
}

TEST_F(RxMessage, WhatComesBeyondTheWantedLengthStaysUnread) {
    line.write(hex("01 02 03 04"));
    EXPECT_EQ(rxMessage(link, 3, longMs, longMs), came("01 02 03"));
    EXPECT_EQ(receive(link, 16, longMs), came("04"));
}

TEST_F(RxMessage, SilenceBetweenTwoBytesEndsIt) {
    line.write(hex("01 02 03"));
    EXPECT_EQ(rxMessage(link, 10, longMs, 30), came("01 02 03"));
    EXPECT_GE(elapsed(), milliseconds(30));
    EXPECT_LT(elapsed(), milliseconds(longMs / 2));
}

TEST_F(RxMessage, BytesThatDripWithinTheSilenceAreAllCollected) {
    const QByteArray answer(40, 'd');
    std::thread station = drip(answer, milliseconds(5));
    EXPECT_EQ(rxMessage(link, 40, longMs, longMs / 2), (Received{0, answer}));
    station.join();
}

TEST_F(RxMessage, FirstByteMayTakeLongerThanTheSilence) {
    std::thread station([this] {
        std::this_thread::sleep_for(milliseconds(100));
        line.write(hex("06"));
    });
    EXPECT_EQ(rxMessage(link, 1, longMs, 20), came("06"));
    EXPECT_GE(elapsed(), milliseconds(90));
    station.join();
}

TEST_F(RxMessage, TimeOutEndsAnAnswerThatGoesOnAndOn) {
    std::atomic<bool> over{false};
    std::thread station([this, &over] {
        while (!over) {
            line.write(hex("64"));
            std::this_thread::sleep_for(milliseconds(5));
        }
    });
    const Received received = rxMessage(link, 100000, 150, longMs);
    over = true;
    station.join();
    EXPECT_EQ(received.result, 0);
    EXPECT_GT(received.bytes.size(), 0);
    EXPECT_LT(received.bytes.size(), 100000);
    EXPECT_GE(elapsed(), milliseconds(150));
}

TEST_F(RxMessage, NothingWantedIsThereAtOnce) {
    EXPECT_EQ(rxMessage(link, 0, longMs, 20), nothing);
    EXPECT_LT(elapsed(), milliseconds(longMs / 2));
}

TEST_F(RxMessage, WithoutTimeTakesWhatIsThere) {
    line.write(hex("01 02"));
    ASSERT_TRUE(line.awaitUnread(2));
    EXPECT_EQ(rxMessage(link, 2, 0, 0), came("01 02"));
}

TEST_F(RxMessage, BytesThatCameInTimeCountHoweverLateTheyAreFetched) {
    line.write(hex("01 02 03"));
    ASSERT_TRUE(line.awaitUnread(3));
    std::this_thread::sleep_for(milliseconds(30));
    EXPECT_EQ(rxMessage(link, 3, -5, -5), came("01 02 03"));
}

TEST_F(RxMessage, RoundTripEndsWithTheLastByte) {
    ASSERT_EQ(send(link, hex("01")), 0);
    std::this_thread::sleep_for(milliseconds(20));
    line.write(hex("02"));
    EXPECT_EQ(receive(link, 1, longMs), came("02"));
    std::this_thread::sleep_for(milliseconds(30));
    line.write(hex("03"));
    EXPECT_EQ(receive(link, 1, longMs), came("03"));

    const RoundTrips trips = link.takeRoundTrips();
    EXPECT_EQ(trips.count, 1U);
    EXPECT_GE(trips.last, milliseconds(50));
    EXPECT_EQ(trips.slowest, trips.last);
}

// A telegram that the line takes only slowly is on its way before the send returns.
TEST_F(RxMessage, RoundTripBeginsWithTheTelegram) {
    constexpr int size = 20'000; // more than the line holds unread
    std::thread controller([this] {
        line.read(1);
        std::this_thread::sleep_for(milliseconds(60));
        line.read(size - 1);
        line.write(hex("02"));
    });
    ASSERT_EQ(send(link, QByteArray(size, '\x01')), 0);
    EXPECT_EQ(rxMessage(link, 1, longMs), came("02"));
    controller.join();
    EXPECT_GE(link.takeRoundTrips().last, milliseconds(60));
}

TEST_F(RxMessage, RoundTripsAreTakenOnceWithTheSlowest) {
    for (const int delay : {5, 60, 10}) {
        ASSERT_EQ(send(link, hex("01")), 0);
        std::this_thread::sleep_for(milliseconds(delay));
        line.write(hex("02"));
        EXPECT_EQ(rxMessage(link, 1, longMs), came("02"));
    }
    const RoundTrips trips = link.takeRoundTrips();
    EXPECT_EQ(trips.count, 3U);
    EXPECT_GE(trips.last, milliseconds(10));
    EXPECT_GE(trips.slowest, milliseconds(60));
    EXPECT_EQ(link.takeRoundTrips().count, 0U);
    EXPECT_EQ(link.takeRoundTrips().slowest.count(), 0);
}

TEST_F(RxMessage, UnansweredTelegramIsNoRoundTrip) {
    ASSERT_EQ(send(link, hex("01")), 0);
    EXPECT_EQ(rxMessage(link, 1, 5), nothing);
    ASSERT_EQ(send(link, hex("01")), 0);
    EXPECT_EQ(link.takeRoundTrips().count, 0U);
}
