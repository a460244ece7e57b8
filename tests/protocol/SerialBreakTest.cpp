#include "ExchangeTest.h"
#include "PtyPair.h"
#include "TerminalCalls.h"

#include <SBusSerialDriver.h>

#include <HalvexDriverLink/CLinkSerial.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// An exchange over a real serial device, whose far end answers as a controller would.
class SerialBreakTest : public testing::Test {
protected:
    SerialBreakTest() {
        TerminalCalls::clear();
        EXPECT_EQ(link->open(), 0);
        driver->setLink(link);
        channel.SetConnect(true);
        request.rtu = channel.add<PublishingRtu>(stationRecord(3, "5", 20'000));
    }

    ~SerialBreakTest() override { TerminalCalls::failBreaks(0); }

    // When the telegram has arrived at the controller, counted from the start of the exchange.
    std::chrono::milliseconds arrivalOf(int telegramSize, const QByteArray& answer) {
        const Clock::time_point start = Clock::now();
        std::future<Clock::time_point> arrival = std::async(std::launch::async, [&] {
            telegram = line.read(telegramSize);
            const Clock::time_point arrived = Clock::now();
            line.write(answer);
            return arrived;
        });
        const SBusRequestItem item{2, 8, 100, {}};
        QByteArray frame;
        QByteArray response(4, '\0');
        driver->buildReadFrame(frame, item, 5);
        EXPECT_EQ(driver->transceive(item, frame, response, request, true), SBusSuccess);
        return std::chrono::duration_cast<std::chrono::milliseconds>(arrival.get() - start);
    }

    PtyPair line;
    RecordingCore core;
    TestChannel channel{&core};
    CLinkSerial* const link = channel.take(std::make_unique<CLinkSerial>(SerialSettings{line.device()}));
    SBusSerialDriver* const driver = new SBusSerialDriver(&channel);
    SBusRequest request;
    QByteArray telegram;
};

} // namespace

TEST_F(SerialBreakTest, InBreakModeTheTelegramFollowsABreakOfTheGivenDelay) {
    driver->breakDelay = 300;
    EXPECT_GE(arrivalOf(7, withChecksum(hex("05 01"))).count(), 300);
    EXPECT_EQ(toHex(telegram), toHex(withChecksum(hex("05 02 08 00 64"))));
}

TEST_F(SerialBreakTest, InDataModeThereIsNoBreak) {
    driver->transmitMode = 0;
    driver->breakDelay = 60'000;
    EXPECT_LT(arrivalOf(9, withChecksum(hex("B5 01 05 01"))).count(), 60'000);
}

TEST_F(SerialBreakTest, InAnyOtherModeThereIsNoBreak) {
    driver->transmitMode = 7;
    driver->breakDelay = 60'000;
    EXPECT_LT(arrivalOf(7, withChecksum(hex("05 01"))).count(), 60'000);
}

TEST_F(SerialBreakTest, ABreakIsSentBeforeAWriteToo) {
    driver->breakDelay = 300;
    const Clock::time_point start = Clock::now();
    std::thread controller([this] {
        telegram = line.read(9);
        line.write(hex("06"));
    });
    const SBusRequestItem item{13, 0, 32, hex("00")};
    QByteArray frame;
    QByteArray response;
    driver->buildWriteFrame(frame, item, 5);
    EXPECT_EQ(driver->transceive(item, frame, response, request, false), SBusSuccess);
    controller.join();
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(300));
    EXPECT_EQ(toHex(telegram), "05 0D 03 00 20 00 00 5F F0");
}

TEST_F(SerialBreakTest, OneBreakIsSentBeforeEachTelegramInBreakModeAlone) {
    driver->breakDelay = 1;
    arrivalOf(7, withChecksum(hex("05 01")));
    EXPECT_EQ(TerminalCalls::breaks().size(), 2U); // on and off
    arrivalOf(7, withChecksum(hex("05 01")));
    EXPECT_EQ(TerminalCalls::breaks().size(), 4U);
    driver->transmitMode = 7;
    arrivalOf(7, withChecksum(hex("05 01")));
    driver->transmitMode = 0;
    arrivalOf(9, withChecksum(hex("B5 01 05 01")));
    EXPECT_EQ(TerminalCalls::breaks().size(), 4U);
}

TEST_F(SerialBreakTest, ABreakThatTheDeviceRefusesMakesNoDifference) {
    TerminalCalls::failBreaks(ENOTTY);
    EXPECT_LT(arrivalOf(7, withChecksum(hex("05 01"))).count(), 20'000);
    EXPECT_FALSE(TerminalCalls::breaks().empty());
    EXPECT_EQ(toHex(telegram), toHex(withChecksum(hex("05 02 08 00 64"))));
    EXPECT_TRUE(channel.IsConnect());
}
