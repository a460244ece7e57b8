#include "EthernetExchangeTest.h"
#include "SerialExchangeTest.h"

#include <algorithm>

// How long an exchange waits, and into what.

namespace {

// A serial line on which the second piece of an answer comes `gapMs` after the first one, and which notes
// what it is asked for.
class PausingLink : public ScriptedLink {
public:
    PausingLink() : ScriptedLink(serialKind) {}

    void answerWithGap(const QByteArray& first, const QByteArray& second, int newGapMs) {
        answer(first);
        answer(second);
        gapMs = newGapMs;
        pieces = 0;
    }

    int receive(char* buffer, int capacity, int& received, int timeoutMs) override {
        areasWereZero =
            areasWereZero && std::all_of(buffer, buffer + capacity, [](char byte) { return byte == 0; });
        if (++pieces == 2) {
            longestSecondWait = std::max(longestSecondWait, timeoutMs);
            if (timeoutMs < gapMs) {
                std::this_thread::sleep_for(std::chrono::milliseconds(timeoutMs));
                received = 0;
                return 0;
            }
        }
        return ScriptedLink::receive(buffer, capacity, received, timeoutMs);
    }

    int kind() const override {
        // The protocol looks at the kind of a const link.
        const_cast<PausingLink*>(this)->calls << QStringLiteral("kind");
        return ScriptedLink::kind();
    }

    bool areasWereZero = true;
    int longestSecondWait = 0;

private:
    int gapMs = 0;
    int pieces = 0;
};

class SerialWaitTest : public ExchangeTest<SBusSerialDriver> {
protected:
    SerialWaitTest() : ExchangeTest(std::make_unique<PausingLink>()) {}

    PausingLink* line() const { return static_cast<PausingLink*>(link); }

    unsigned readFlags(int mode) {
        driver->transmitMode = mode;
        return read({2, 8, 100, {}}, 2);
    }

    // Two bytes of four, and the other two later.
    unsigned readWithGap(int gapMs) {
        const QByteArray answer = withChecksum(hex("05 01"));
        line()->answerWithGap(answer.left(2), answer.mid(2), gapMs);
        return readFlags(1);
    }
};

// An Ethernet link that notes whether what it is to receive into is zero.
class ZeroNotingLink : public ScriptedLink {
public:
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override {
        areasWereZero =
            areasWereZero && std::all_of(buffer, buffer + capacity, [](char byte) { return byte == 0; });
        return ScriptedLink::receive(buffer, capacity, received, timeoutMs);
    }

    bool areasWereZero = true;
};

// An Ethernet link that fails once a datagram has come.
class FailingWithBytesLink : public ScriptedLink {
public:
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override {
        ScriptedLink::receive(buffer, capacity, received, timeoutMs);
        return -1;
    }
};

class EthernetFailureTest : public ExchangeTest<SBusEthernetDriver> {
protected:
    EthernetFailureTest() : ExchangeTest(std::make_unique<FailingWithBytesLink>()) {}
};

class EthernetWaitTest : public ExchangeTest<SBusEthernetDriver> {
protected:
    EthernetWaitTest() : ExchangeTest(std::make_unique<ZeroNotingLink>()) {}
};

} // namespace

// A busy machine may take some of the time away before the wait begins, so the longest of many tries counts.
TEST_F(SerialWaitTest, AnAnswerMayPauseForTwentyMilliseconds) {
    for (int i = 0; i < 1'000 && line()->longestSecondWait < 20; ++i)
        readWithGap(0);
    EXPECT_EQ(line()->longestSecondWait, 20);
}

TEST_F(SerialWaitTest, AGapOfLessThanTwentyMillisecondsIsWaitedFor) {
    unsigned code = SBusTimeOut;
    for (int i = 0; i < 1'000 && code != SBusSuccess; ++i)
        code = readWithGap(19);
    EXPECT_EQ(code, SBusSuccess);
}

TEST_F(SerialWaitTest, AGapOfMoreThanTwentyMillisecondsEndsTheAnswer) {
    EXPECT_EQ(readWithGap(21), SBusTimeOut);
    expectConnected(false, false);
}

TEST_F(SerialWaitTest, TheLinksKindIsAskedBeforeABreakAndOnlyThen) {
    link->answer(withChecksum(hex("05 01")));
    readFlags(1);
    EXPECT_EQ(link->calls.mid(0, 2), (QStringList{"kind", "send 5000"}));
    for (const int mode : {0, 7}) {
        link->calls.clear();
        link->answer(withChecksum(mode == 0 ? hex("B5 01 05 01") : hex("05 01")));
        EXPECT_EQ(readFlags(mode), SBusSuccess);
        EXPECT_EQ(link->calls.value(0), "send 5000") << mode;
        EXPECT_FALSE(link->calls.contains("kind")) << mode;
    }
}

TEST_F(SerialWaitTest, WhatIsReceivedIntoIsZeroAtFirst) {
    for (const int mode : {0, 1, 7}) {
        driver->transmitMode = mode;
        link->answer(withWrongChecksum(mode == 0 ? hex("B5 01 05 01") : hex("05 01")));
        link->answer(hex("FF"));
        driver->buildReadFrame(frame, {2, 8, 100, {}}, 5);
        response = hex("AA AA AA AA");
        EXPECT_EQ(driver->transceive({2, 8, 100, {}}, frame, response, request, true), SBusBadData);
        EXPECT_TRUE(line()->areasWereZero) << mode;
    }
    for (const int mode : {0, 1}) {
        driver->transmitMode = mode;
        link->answer(mode == 0 ? hex("B5 02 00 00 23 F4") : hex("06"));
        driver->buildWriteFrame(frame, {13, 0, 32, hex("00")}, 5);
        response = hex("AA AA");
        EXPECT_EQ(driver->transceive({13, 0, 32, hex("00")}, frame, response, request, false), SBusSuccess);
        EXPECT_TRUE(line()->areasWereZero) << mode;
    }
}

// An interrupted wait ends at once, in most tries within the millisecond in which it began.
TEST_F(SerialWaitTest, ATimeOutIsOverOnlyWhenMoreThanItHasPassed) {
    useTimeOut(0);
    link->interrupt();
    bool wasShortAnswer = false;
    for (int i = 0; i < 1'000 && !wasShortAnswer; ++i) {
        connect(true);
        EXPECT_EQ(readFlags(1), SBusTimeOut);
        wasShortAnswer = !channel.IsConnect();
    }
    EXPECT_TRUE(wasShortAnswer);
}

TEST_F(EthernetWaitTest, WhatIsReceivedIntoIsZeroAtFirst) {
    const QByteArray whole = ethernetTelegram(0, 1, hex("00 00 00 07"));
    link->answer(whole.left(10));
    link->answer(whole.mid(10));
    EXPECT_EQ(read({6, 0, 10, {}}, 4), SBusSuccess);
    EXPECT_TRUE(static_cast<ZeroNotingLink*>(link)->areasWereZero);
}

TEST_F(EthernetWaitTest, ATimeOutIsOverOnlyWhenMoreThanItHasPassed) {
    useTimeOut(0);
    bool wasShortAnswer = false;
    for (int i = 0; i < 1'000 && !wasShortAnswer; ++i) {
        connect(true);
        link->answer(hex("00 00 00 0F 01"));
        EXPECT_EQ(read({6, 0, 10, {}}, 4), SBusTimeOut);
        wasShortAnswer = !channel.IsConnect();
    }
    EXPECT_TRUE(wasShortAnswer);
}

// Four bytes are enough to be looked at, three are not.
TEST_F(EthernetWaitTest, FourBytesAreWaitedOnForTheRest) {
    const QByteArray whole = ethernetTelegram(0, 1, hex("00 00 00 07"));
    link->answer(whole.left(4));
    link->answer(whole.mid(4));
    EXPECT_EQ(read({6, 0, 10, {}}, 4), SBusSuccess);
    EXPECT_EQ(link->calls, (QStringList{"send 5000", "receive 1024 60000", "receive 1020 60000"}));
}

TEST_F(EthernetFailureTest, WhatALinkHasReceivedCountsForNothingWhenItFails) {
    link->answer(ethernetTelegram(0, 1, hex("00 00 00 07")));
    EXPECT_EQ(read({6, 0, 10, {}}, 4), SBusChannelError);
    expectConnected(false, false);
}
