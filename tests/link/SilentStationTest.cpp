// What the transaction asks of a silent station: "nothing received, and its clock shows more than the
// time-out", every single time. That clock is a QTime, of whole milliseconds of the wall clock.

#include "LinkCalls.h"
#include "ProcessFigures.h"
#include "UdpController.h"

#include <HalvexDriverLink/CLinkSerial.h>
#include <HalvexDriverLink/CLinkUdp.h>
#include <PtyPair.h>

#include <QTime>

#include <gtest/gtest.h>

namespace {

constexpr int tries = 1000;
constexpr int timeoutMs = 3;

// As a QTime counts it.
int elapsed(QTime start) {
    const int ms = start.msecsTo(QTime::currentTime());
    return ms >= 0 ? ms : ms + 24 * 60 * 60 * 1000; // past midnight
}

template <class Wait>
void expectATimeOutEveryTime(CLink& link, Wait wait) {
    int shortWaits = 0;
    for (int i = 0; i < tries; ++i) {
        ASSERT_EQ(send(link, hex("B5 00 01 02 08 00 64 49 69")), 0);
        const QTime clockStart = QTime::currentTime();
        ASSERT_EQ(wait(), nothing) << "try " << i;
        if (elapsed(clockStart) <= timeoutMs)
            ++shortWaits;
    }
    EXPECT_EQ(shortWaits, 0);
    EXPECT_EQ(link.figures().opens, 1U);
}

} // namespace

TEST(SilentStation, IsSeenAsATimeOutInAThousandTriesOnASerialLine) {
    PtyPair line;
    CLinkSerial link({line.device()});
    ASSERT_EQ(link.open(), 0);
    expectATimeOutEveryTime(link, [&] {
        line.read(9); // the line does not fill up
        return rxMessage(link, 6, timeoutMs);
    });
}

TEST(SilentStation, IsSeenAsATimeOutInAThousandTriesOnUdp) {
    UdpController silent;
    CLinkUdp link({"127.0.0.1", silent.port()});
    ASSERT_EQ(link.open(), 0);
    expectATimeOutEveryTime(link, [&] { return receive(link, 1024, timeoutMs); });
}

TEST(SilentStation, AbsentControllerIsSeenAsATimeOutInAThousandTries) {
    CLinkUdp link({"127.0.0.1", unusedUdpPort()});
    ASSERT_EQ(link.open(), 0);
    expectATimeOutEveryTime(link, [&] { return receive(link, 1024, timeoutMs); });
}

TEST(SilentStation, WaitLeavesRoomForASlewedWallClock) {
    PtyPair line;
    CLinkSerial link({line.device()});
    ASSERT_EQ(link.open(), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(rxMessage(link, 6, 1000), nothing);
    // A wall clock that runs 500 millionths slow is half a millisecond behind by now, and shows whole ones.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::microseconds(1001500));
}

TEST(SilentStation, AbsentControllerCostsOneTimeOutPerExchangeAndNoBusyLoop) {
    CLinkUdp link({"127.0.0.1", unusedUdpPort()});
    ASSERT_EQ(link.open(), 0);
    const auto processorStart = threadProcessorTime();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        const auto exchangeStart = std::chrono::steady_clock::now();
        ASSERT_EQ(send(link, hex("01 02 03")), 0);
        ASSERT_EQ(receive(link, 1024, 50), nothing);
        EXPECT_GE(std::chrono::steady_clock::now() - exchangeStart, std::chrono::milliseconds(50));
    }
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LT(threadProcessorTime() - processorStart, elapsed / 10);
    EXPECT_EQ(link.figures().opens, 1U);
}
