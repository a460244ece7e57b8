#include "LinkCalls.h"
#include "NotingObserver.h"

#include <HalvexDriverLink/CLinkSerial.h>
#include <PtyPair.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr int ampleMs = 5000; // for what is certain to come

struct ObservedSerial : testing::Test {
    ObservedSerial() {
        link.setObserver(&observer);
        EXPECT_EQ(link.open(), 0);
    }

    PtyPair pty;
    CLinkSerial link{{pty.device()}};
    NotingObserver observer;
};

} // namespace

// An answer may come in pieces, of which each is told.
TEST_F(ObservedSerial, TellsOpenTelegramAndAnswer) {
    EXPECT_EQ(send(link, hex("B5 00 05")), 0);
    EXPECT_EQ(toHex(pty.read(3)), "B5 00 05");
    pty.write(hex("B5 02 00 00"));
    ASSERT_TRUE(pty.awaitUnread(4));
    EXPECT_EQ(receive(link, 3, ampleMs), came("B5 02 00"));
    EXPECT_EQ(receive(link, 3, ampleMs), came("00"));
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", "sent B5 00 05", "received B5 02 00", "received 00"));
    EXPECT_LE(observer.sentAt, observer.receivedAt);
}

TEST_F(ObservedSerial, TellsAMessageThatIsCollected) {
    pty.write(hex("B5 01 FF 01"));
    ASSERT_TRUE(pty.awaitUnread(4));
    EXPECT_EQ(rxMessage(link, 4, ampleMs, ampleMs), came("B5 01 FF 01"));
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", "received B5 01 FF 01"));
}

TEST_F(ObservedSerial, TellsWhatIsThrownAwayBeforeTheTelegram) {
    pty.write(hex("B5 02 00 00 5C 9D"));
    ASSERT_TRUE(pty.awaitUnread(6));
    EXPECT_EQ(send(link, hex("01")), 0);
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", "discarded B5 02 00 00 5C 9D", "sent 01"));
}

// Nobody knows how much of it went out.
TEST_F(ObservedSerial, TellsNoTelegramThatTheLineDidNotTake) {
    EXPECT_EQ(send(link, QByteArray(1'000'000, 'x'), 50), -1);
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", StartsWith("not sent 78 78")));
}

TEST_F(ObservedSerial, TellsADeviceThatVanishes) {
    pty.unplug();
    EXPECT_EQ(receive(link, 16, ampleMs), failed);
    EXPECT_EQ(link.open(), ENOENT);
    EXPECT_EQ(send(link, hex("01")), -1);
    pty.plugIn();
    EXPECT_EQ(link.open(), 0);
    EXPECT_THAT(observer.notes, ElementsAre("opened 0", "failed", "opened " + std::to_string(ENOENT),
                                            "not sent 01", "opened 0"));
}

TEST_F(ObservedSerial, TellsADeviceInUse) {
    CLinkSerial other({pty.device()});
    NotingObserver others;
    other.setObserver(&others);
    EXPECT_EQ(other.open(), EBUSY);
    EXPECT_THAT(others.notes, ElementsAre("opened " + std::to_string(EBUSY)));
    EXPECT_THAT(observer.notes, ElementsAre("opened 0"));
}
