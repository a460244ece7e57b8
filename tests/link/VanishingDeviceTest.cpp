// An adapter that is pulled out, the other end of a pseudo terminal that closes.

#include "LinkCalls.h"
#include "ProcessFigures.h"

#include <HalvexDriverLink/CLinkSerial.h>
#include <PtyPair.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

constexpr int ampleMs = 60000; // a failure ends every wait long before

class VanishingDevice : public testing::Test {
protected:
    VanishingDevice() { EXPECT_EQ(link.open(), 0); }

    void expectClosedUntilItIsBack() {
        for (int i = 0; i < 100; ++i)
            EXPECT_NE(link.open(), 0);
        EXPECT_EQ(send(link, hex("01")), -1);
        line.plugIn();
        ASSERT_EQ(link.open(), 0);
        EXPECT_EQ(send(link, hex("01 02")), 0);
        EXPECT_EQ(toHex(line.read(2)), "01 02");
        line.write(hex("03"));
        EXPECT_EQ(receive(link, 16, ampleMs), came("03"));
    }

    PtyPair line;
    CLinkSerial link{{line.device()}};
};

} // namespace

TEST_F(VanishingDevice, FailsOneReceiveAndIsClosedUntilItIsBack) {
    line.unplug();
    EXPECT_EQ(receive(link, 16, ampleMs), failed);
    expectClosedUntilItIsBack();
}

TEST_F(VanishingDevice, FailsOneSendAndIsClosedUntilItIsBack) {
    line.unplug();
    EXPECT_EQ(send(link, hex("01")), -1);
    expectClosedUntilItIsBack();
}

TEST_F(VanishingDevice, FailsTheMessageThatIsBeingCollected) {
    std::thread station([this] {
        line.write(hex("B5 01"));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        line.unplug();
    });
    EXPECT_EQ(rxMessage(link, 6, ampleMs, ampleMs).result, -1);
    station.join();
    expectClosedUntilItIsBack();
}

TEST_F(VanishingDevice, FailsTheBreak) {
    line.unplug();
    EXPECT_EQ(link.sendBreak(1), -1);
    expectClosedUntilItIsBack();
}

TEST_F(VanishingDevice, IsClosedWithoutHarm) {
    line.unplug();
    link.close();
    expectClosedUntilItIsBack();
}

TEST_F(VanishingDevice, DoesNotMakeAWaitSpin) {
    std::thread station([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        line.unplug();
    });
    const auto processorStart = threadProcessorTime();
    EXPECT_EQ(receive(link, 16, ampleMs), failed);
    EXPECT_LT(threadProcessorTime() - processorStart, std::chrono::milliseconds(100));
    station.join();
    EXPECT_EQ(receive(link, 16, ampleMs), failed) << "at once: it is closed";
}
