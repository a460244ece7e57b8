#include "Hex.h"
#include "RefereedLine.h"

namespace {

const SBusRequestItem readRegister{6, 0, 10, {}};
const QString asked = QStringLiteral("Read register(s) (0x06), 1 from 10");
const QString zero = QStringLiteral("response: 00 00 00 00");

class SequenceNumber : public RefereedLine {
protected:
    void readOnce() { exchangeAs(readRegister, asked, zero); }
};

class Referee : public RefereedLine {};

} // namespace

TEST_F(SequenceNumber, GoesOnWith0After65535) {
    skipToSequence(65534);
    readOnce();
    readOnce();
    readOnce();
    expectToBeReadAsMeant();
}

// The clock telegram carries none, so it takes none.
TEST_F(SequenceNumber, IsLeftAloneByTheClockTelegram) {
    readOnce();
    exchangeInVain({12, 0, 0, hex("52 07 23 12 31 23 59 58")});
    readOnce();
    EXPECT_EQ(reading(), (QStringList{"0 station 5: " + asked, "0 " + zero, "no S-Bus telegram, 10 bytes",
                                      "1 station 5: " + asked, "1 " + zero}));
}

// tshark files telegrams by their sequence number alone and never forgets one. After 65536 telegrams it
// believes to see the first ones again. A controller compares with the telegram before.
TEST_F(SequenceNumber, IsARepetitionToTsharkWhenItComesAgain) {
    readOnce();
    skipToSequence(65535);
    readOnce();
    readOnce();
    EXPECT_EQ(reading(),
              (QStringList{"0 station 5: " + asked, "0 " + zero, "65535 station 5: " + asked, "65535 " + zero,
                           "0 station 5: " + asked + " [Repeated telegram (due to timeout?)]",
                           "0 " + zero + " [answers datagram 1]"}));
}

TEST_F(Referee, ReadsTheStationOfEachRequest) {
    for (const int other : {0, 254})
        exchangeWith(other, readRegister);
    EXPECT_EQ(reading(), (QStringList{"0 station 0: Read register(s) (0x06), 1 from 10", "0 " + zero,
                                      "1 station 254: Read register(s) (0x06), 1 from 10", "1 " + zero}));
}

// The clock goes out as its data and checksum, without header, station and command. tshark asks for a header
// and finds none, even at a time whose bytes stand where a header has its version and type.
TEST_F(Referee, FindsNoTelegramInAClockSetting) {
    exchangeInVain({12, 0, 0, hex("52 07 23 12 31 23 59 58")});
    exchangeInVain({12, 0, 0, hex("52 01 24 12 01 00 00 00")});
    EXPECT_EQ(reading(), (QStringList{"no S-Bus telegram, 10 bytes", "no S-Bus telegram, 10 bytes"}));
}

// What all the other tests rest on: it does say so when a telegram is wrong.
TEST_F(Referee, NamesASpoiltChecksum) {
    sim::Faults faults;
    faults.crc = 1;
    simulator.setFaults(lineId, faults);
    exchange(readRegister);
    const QStringList read = reading();
    ASSERT_EQ(read.size(), 2);
    EXPECT_EQ(read[0], "0 station 5: " + asked);
    EXPECT_TRUE(read[1].startsWith(QStringLiteral("0 response: 00 00 00 00 [Bad checksum [should be 0x")))
        << read[1];
    EXPECT_TRUE(read[1].endsWith(QStringLiteral("[checksum not correct]"))) << read[1];
}
