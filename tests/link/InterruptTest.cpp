#include "LinkCalls.h"
#include "UdpController.h"

#include <HalvexDriverLink/CLinkUdp.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr int longMs = 60000; // the tests end long before: half of it tells "at once" from "at the time-out"

class Interrupt : public testing::Test {
protected:
    Interrupt() { EXPECT_EQ(link.open(), 0); }

    template <class Action>
    std::thread afterAWhile(Action action) {
        return std::thread([action] {
            std::this_thread::sleep_for(milliseconds(50));
            action();
        });
    }

    void TearDown() override { EXPECT_LT(steady_clock::now() - start, milliseconds(longMs / 2)); }

    UdpController controller;
    CLinkUdp link{{"127.0.0.1", controller.port()}};
    const steady_clock::time_point start = steady_clock::now();
};

} // namespace

TEST_F(Interrupt, EndsReceiveAsIfNothingHadCome) {
    std::thread other = afterAWhile([this] { link.interrupt(); });
    EXPECT_EQ(receive(link, 16, longMs), nothing);
    other.join();
}

TEST_F(Interrupt, EndsRxMessageWithWhatIsThere) {
    ASSERT_EQ(send(link, hex("01")), 0);
    ASSERT_EQ(toHex(controller.receive()), "01");
    controller.answer(hex("0A 0B"));
    std::thread other = afterAWhile([this] { link.interrupt(); });
    const Received received = rxMessage(link, 16, longMs, longMs);
    other.join();
    EXPECT_EQ(received, came("0A 0B"));
}

TEST_F(Interrupt, EndsEveryLaterWaitAtOnceUntilReset) {
    link.interrupt();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(receive(link, 16, longMs), nothing);
        EXPECT_EQ(rxMessage(link, 16, longMs, longMs), nothing);
    }
    ASSERT_EQ(link.open(), 0);
    EXPECT_EQ(receive(link, 16, longMs), nothing) << "opening again does not take it back";

    link.reset();
    EXPECT_EQ(receive(link, 16, longMs), failed) << "reset closes";
    ASSERT_EQ(link.open(), 0);
    const auto waitStart = steady_clock::now();
    EXPECT_EQ(receive(link, 16, 30), nothing);
    EXPECT_GE(steady_clock::now() - waitStart, milliseconds(30));
}

TEST_F(Interrupt, LeavesWhatHasComeForLater) {
    ASSERT_EQ(send(link, hex("01")), 0);
    ASSERT_EQ(toHex(controller.receive()), "01");
    link.interrupt();
    controller.answer(hex("0A"));
    EXPECT_EQ(receive(link, 16, longMs), nothing);
    EXPECT_EQ(send(link, hex("02")), 0) << "sending does not wait, so it goes on";
    EXPECT_EQ(toHex(controller.receive()), "02");
    EXPECT_EQ(link.figures().bytesDiscarded, 1U);
}

TEST_F(Interrupt, MayComeBeforeTheFirstOpenAndAfterClose) {
    CLinkUdp fresh({"127.0.0.1", controller.port()});
    fresh.interrupt();
    ASSERT_EQ(fresh.open(), 0);
    EXPECT_EQ(receive(fresh, 16, longMs), nothing);
    fresh.close();
    fresh.interrupt();
    EXPECT_EQ(receive(fresh, 16, longMs), failed);
}

TEST_F(Interrupt, IsSeenAtWhateverMomentItComes) {
    std::atomic<int> waits{0};
    std::thread other([this, &waits] {
        for (int i = 0; i < 500; ++i) {
            while (waits.load() <= i)
                std::this_thread::yield();
            // Now here, now there in the course of the wait.
            for (int spin = 0; spin < i * 20; ++spin)
                std::atomic_signal_fence(std::memory_order_seq_cst);
            link.interrupt();
        }
    });
    for (int i = 0; i < 500; ++i) {
        link.reset();
        ASSERT_EQ(link.open(), 0);
        waits.fetch_add(1);
        EXPECT_EQ(receive(link, 16, longMs), nothing);
    }
    other.join();
}

TEST_F(Interrupt, MayComeDuringAnyOperation) {
    std::atomic<bool> over{false};
    std::thread other([this, &over] {
        while (!over.load())
            link.interrupt();
    });
    for (int i = 0; i < 300; ++i) {
        link.reset();
        ASSERT_EQ(link.open(), 0);
        EXPECT_EQ(send(link, hex("01")), 0);
        EXPECT_EQ(rxMessage(link, 16, 1), nothing);
        link.close();
    }
    over.store(true);
    other.join();
}

TEST_F(Interrupt, CloseFromAnotherThreadEndsAWait) {
    std::thread other = afterAWhile([this] { link.close(); });
    const Received received = rxMessage(link, 16, longMs, longMs);
    other.join();
    EXPECT_EQ(received, failed);
}
