#include "LinkCalls.h"
#include "TerminalCalls.h"

#include <HalvexDriverLink/CLinkSerial.h>
#include <PtyPair.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <thread>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr int ampleMs = 5000; // for what is certain to come

struct SerialLine {
    SerialLine() {
        EXPECT_EQ(link.open(), 0);
        TerminalCalls::clear();
    }

    PtyPair pty;
    CLinkSerial link{{pty.device()}};
};

// What the device is set to.
termios terminalSettings(SerialSettings settings) {
    PtyPair pty;
    settings.device = pty.device();
    CLinkSerial link(settings);
    const TerminalCalls::ObedientTerminals terminals;
    EXPECT_EQ(link.open(), 0);
    return terminals.settings();
}

tcflag_t controlFlags(const SerialSettings& settings, tcflag_t mask) {
    return terminalSettings(settings).c_cflag & mask;
}

SerialSettings with(unsigned dataBits, SerialParity parity, unsigned stopBits) {
    return {"", 9600, dataBits, parity, stopBits};
}

constexpr tcflag_t parityMask = PARENB | PARODD;

} // namespace

TEST(CLinkSerial, IsOfTheSerialKind) {
    EXPECT_EQ(CLinkSerial({"/dev/ttyUSB0"}).kind(), 3);
}

TEST(CLinkSerial, SendsAndReceivesBytes) {
    SerialLine line;
    EXPECT_EQ(send(line.link, hex("B5 00 01 02 08 00 64 49 69")), 0);
    EXPECT_EQ(toHex(line.pty.read(9)), "B5 00 01 02 08 00 64 49 69");
    line.pty.write(hex("B5 01 FF 01 12 34"));
    EXPECT_EQ(rxMessage(line.link, 6, ampleMs, ampleMs), came("B5 01 FF 01 12 34"));
}

TEST(CLinkSerial, EveryByteValuePassesUnchanged) {
    SerialLine line;
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<char>(i);
    EXPECT_EQ(send(line.link, all), 0);
    EXPECT_EQ(toHex(line.pty.read(256)), toHex(all));
    line.pty.write(all);
    EXPECT_EQ(rxMessage(line.link, 256, ampleMs, ampleMs), (Received{0, all}));
}

TEST(CLinkSerial, BaudRateIsSet) {
    for (const auto& [baud, speed] :
         {std::pair(1200U, B1200), {9600U, B9600}, {38400U, B38400}, {115200U, B115200}}) {
        const termios terminal = terminalSettings({"", baud});
        EXPECT_EQ(cfgetospeed(&terminal), speed);
        EXPECT_EQ(cfgetispeed(&terminal), speed);
    }
}

TEST(CLinkSerial, DataBitsAreSet) {
    EXPECT_EQ(controlFlags(with(8, SerialParity::None, 1), CSIZE), tcflag_t{CS8});
    EXPECT_EQ(controlFlags(with(7, SerialParity::None, 1), CSIZE), tcflag_t{CS7});
}

TEST(CLinkSerial, ParityIsSet) {
    EXPECT_EQ(controlFlags(with(8, SerialParity::None, 1), parityMask), tcflag_t{0});
    EXPECT_EQ(controlFlags(with(8, SerialParity::Even, 1), parityMask), tcflag_t{PARENB});
    EXPECT_EQ(controlFlags(with(8, SerialParity::Odd, 1), parityMask), tcflag_t{PARENB | PARODD});
}

TEST(CLinkSerial, StopBitsAreSet) {
    EXPECT_EQ(controlFlags(with(8, SerialParity::None, 1), CSTOPB), tcflag_t{0});
    EXPECT_EQ(controlFlags(with(8, SerialParity::None, 2), CSTOPB), tcflag_t{CSTOPB});
}

TEST(CLinkSerial, FlowIsNotControlled) {
    const termios terminal = terminalSettings({""});
    EXPECT_EQ(terminal.c_cflag & CRTSCTS, tcflag_t{0});
    EXPECT_EQ(terminal.c_iflag & (IXON | IXOFF), tcflag_t{0});
}

TEST(CLinkSerial, SettingsThatDoNotExistAreErrorsOfOpen) {
    PtyPair pty;
    EXPECT_EQ(CLinkSerial({pty.device(), 9600, 9, SerialParity::None, 1}).open(), EINVAL);
    EXPECT_EQ(CLinkSerial({pty.device(), 9600, 4, SerialParity::None, 1}).open(), EINVAL);
    EXPECT_EQ(CLinkSerial({pty.device(), 9600, 8, SerialParity::None, 0}).open(), EINVAL);
    EXPECT_EQ(CLinkSerial({pty.device(), 9600, 8, SerialParity::None, 3}).open(), EINVAL);
    EXPECT_EQ(CLinkSerial({pty.device(), 12345, 8, SerialParity::None, 1}).open(), EINVAL);
}

TEST(CLinkSerial, OpenGivesTheSystemsErrorNumber) {
    EXPECT_EQ(CLinkSerial({"/dev/no-such-device"}).open(), ENOENT);
    EXPECT_EQ(CLinkSerial({"/dev/null"}).open(), ENOTTY);
}

TEST(CLinkSerial, OperationsOnAClosedLinkFail) {
    PtyPair pty;
    CLinkSerial link({pty.device()});
    EXPECT_EQ(send(link, hex("01")), -1);
    EXPECT_EQ(receive(link, 16, ampleMs), failed);
    EXPECT_EQ(rxMessage(link, 16, ampleMs), failed);
    EXPECT_EQ(link.sendBreak(1), -1);
}

TEST(CLinkSerial, CloseMayComeAtAnyTimeAndMoreThanOnce) {
    SerialLine line;
    line.link.close();
    line.link.close();
    EXPECT_EQ(receive(line.link, 16, ampleMs), failed);
    ASSERT_EQ(line.link.open(), 0);
    EXPECT_EQ(send(line.link, hex("01")), 0);
    EXPECT_EQ(toHex(line.pty.read(1)), "01");
}

TEST(CLinkSerial, FirstOpenStartsFromEmptyInput) {
    PtyPair pty;
    pty.write(hex("AA AA"));
    ASSERT_TRUE(pty.awaitUnread(2));
    CLinkSerial link({pty.device()});
    ASSERT_EQ(link.open(), 0);
    EXPECT_EQ(receive(link, 16, 20), nothing);
}

TEST(CLinkSerial, OpenOnAnOpenLinkStartsFromEmptyInput) {
    SerialLine line;
    line.pty.write(hex("AA AA"));
    ASSERT_TRUE(line.pty.awaitUnread(2));
    ASSERT_EQ(line.link.open(), 0);
    EXPECT_EQ(receive(line.link, 16, 20), nothing);
    line.pty.write(hex("01"));
    EXPECT_EQ(receive(line.link, 16, ampleMs), came("01"));
    EXPECT_EQ(line.link.figures().opens, 2U);
}

TEST(CLinkSerial, LateAndDoubledAnswersAreThrownAwayBySendAndCounted) {
    SerialLine line;
    line.pty.write(hex("B5 02 00 00 5C 9D B5 02 00 00 5C 9D"));
    ASSERT_TRUE(line.pty.awaitUnread(12));
    EXPECT_EQ(send(line.link, hex("01")), 0);
    line.pty.write(hex("06"));
    EXPECT_EQ(rxMessage(line.link, 1, ampleMs), came("06"));
    const LinkFigures figures = line.link.figures();
    EXPECT_EQ(figures.bytesDiscarded, 12U);
    EXPECT_EQ(figures.bytesReceived, 1U);
    EXPECT_EQ(figures.bytesSent, 1U);
    EXPECT_EQ(figures.telegramsSent, 1U);
}

TEST(CLinkSerial, ReceiveTakesTheFirstBytesAndLeavesTheRest) {
    SerialLine line;
    line.pty.write(hex("01 02 03"));
    ASSERT_TRUE(line.pty.awaitUnread(3));
    EXPECT_EQ(receive(line.link, 2, ampleMs), came("01 02"));
    EXPECT_EQ(receive(line.link, 2, ampleMs), came("03"));
}

TEST(CLinkSerial, ReceiveWaitsForItsTimeOut) {
    SerialLine line;
    const auto start = steady_clock::now();
    EXPECT_EQ(receive(line.link, 16, 30), nothing);
    EXPECT_GE(steady_clock::now() - start, milliseconds(30));
}

TEST(CLinkSerial, LineThatTakesATelegramInPiecesGetsAllOfIt) {
    SerialLine line;
    QByteArray telegram(100000, '\0');
    for (int i = 0; i < telegram.size(); ++i)
        telegram[i] = static_cast<char>(i * 7);
    QByteArray arrived;
    std::thread reader([&] { arrived = line.pty.read(telegram.size()); });
    EXPECT_EQ(send(line.link, telegram), 0);
    reader.join();
    EXPECT_TRUE(arrived == telegram);
    EXPECT_EQ(line.link.figures().bytesSent, 100000U);
}

TEST(CLinkSerial, LineThatTakesNothingFailsTheSendAtItsTimeOut) {
    SerialLine line;
    const auto start = steady_clock::now();
    EXPECT_EQ(send(line.link, QByteArray(1000000, 'x'), 50), -1);
    EXPECT_GE(steady_clock::now() - start, milliseconds(50));
    EXPECT_EQ(receive(line.link, 16, ampleMs), failed) << "closed";
    EXPECT_EQ(line.link.open(), 0);
}

TEST(CLinkSerial, BreakIsHeldForItsTime) {
    SerialLine line;
    EXPECT_EQ(line.link.sendBreak(25), 0);
    const auto& breaks = TerminalCalls::breaks();
    ASSERT_EQ(breaks.size(), 2U);
    EXPECT_TRUE(breaks[0].on);
    EXPECT_FALSE(breaks[1].on);
    EXPECT_GE(breaks[1].at - breaks[0].at, milliseconds(25));
}

TEST(CLinkSerial, BreakOfNoTimeIsNone) {
    SerialLine line;
    EXPECT_EQ(line.link.sendBreak(0), 0);
    EXPECT_EQ(line.link.sendBreak(-1), 0);
    EXPECT_EQ(TerminalCalls::breaks().size(), 0U);
}

TEST(CLinkSerial, DeviceWithoutBreakRefusesItAndStaysOpen) {
    SerialLine line;
    TerminalCalls::failBreaks(ENOTTY);
    EXPECT_EQ(line.link.sendBreak(1), -1);
    TerminalCalls::failBreaks(0);
    EXPECT_EQ(send(line.link, hex("01")), 0);
}

TEST(CLinkSerial, ADeviceInUseCannotBeOpenedUntilItIsClosed) {
    SerialLine line;
    CLinkSerial other({line.pty.device()});
    EXPECT_EQ(other.open(), EBUSY);
    line.link.close();
    EXPECT_EQ(other.open(), 0);
}
