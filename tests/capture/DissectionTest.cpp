// Captures, judged from outside by tshark.
#include "services/capture/CapturedDatagrams.h"

#include "Dissection.h"
#include "Exchanges.h"
#include "Printers.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

using host::Answer;
using host::Exchange;
using host::Framing;

namespace {

class CaptureInWireshark : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(file.open());
        write(host::pcapHeader());
    }

    void add(const Exchange& exchange) {
        for (const host::Datagram& datagram : datagrams.make(exchange))
            write(pcapRecord(datagram));
    }

    QStringList reading() {
        EXPECT_TRUE(file.flush());
        return dissectFile(file.fileName());
    }

    // What tshark says of these fields, one line a packet.
    QStringList fields(const QStringList& arguments) {
        EXPECT_TRUE(file.flush());
        return QString::fromUtf8(
                   runTshark(file.fileName(),
                             QStringList{QStringLiteral("-T"), QStringLiteral("fields")} + arguments))
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private:
    void write(const host::TelegramBytes& bytes) {
        const auto size = static_cast<qint64>(bytes.size());
        ASSERT_EQ(file.write(reinterpret_cast<const char*>(bytes.data()), size), size);
    }

    QTemporaryFile file;
    host::CapturedDatagrams datagrams;
};

const QString readRegisters = QStringLiteral("station 5: Read register(s) (0x06), 2 from 10");
const QString switchOutput = QStringLiteral("station 5: Write output(s) (0x0d), 1 from 200: 01");

} // namespace

TEST_F(CaptureInWireshark, ShowsAddressesTimesAndRightChecksums) {
    Exchange exchange = readOfTwoRegisters();
    add(exchange);
    const QStringList shown =
        fields({"-o", "ip.check_checksum:TRUE", "-o", "udp.check_checksum:TRUE", "-e", "frame.time_epoch",
                "-e", "ip.src", "-e", "ip.dst", "-e", "ip.checksum.status", "-e", "udp.checksum.status"});
    EXPECT_EQ(shown, (QStringList{"1795000000.123456000\t10.0.0.1\t10.1.1.5\t1\t1",
                                  "1795000000.127956000\t10.1.1.5\t10.0.0.1\t1\t1"}));
}

TEST_F(CaptureInWireshark, DecodesEthernet) {
    add(readOfTwoRegisters());
    add(exchangeOf(Framing::Ethernet, "00 00 00 12 01 00 00 01 00 05 0D 03 00 C8 00 01 32 65",
                   "00 00 00 0D 01 00 00 01 02 00 01 E6 F0", Answer::Refused));
    EXPECT_EQ(reading(), (QStringList{"0 " + readRegisters, "0 response: 00 00 00 07 FF FF FF FE",
                                      "1 " + switchOutput, "1 " + refused}));
}

TEST_F(CaptureInWireshark, DecodesDataMode) {
    add(exchangeOf(Framing::DataMode, "B5 00 05 06 01 00 0A 19 67", "B5 01 00 00 00 07 FF FF FF FE 8E C6"));
    add(exchangeOf(Framing::DataMode, "B5 00 05 02 08 00 64 C0 6F", "B5 01 FF 01 69 7A"));
    add(exchangeOf(Framing::DataMode, "B5 00 05 0E 05 00 0A 00 00 00 0C E8 BB", "B5 02 00 00 23 F4"));
    add(exchangeOf(Framing::DataMode, "B5 00 05 0D 03 00 C8 00 01 7A 3D", "B5 02 00 01 33 D5",
                   Answer::Refused));
    add(exchangeOf(Framing::DataMode, "B5 00 05 0C 52 07 23 12 31 23 59 58 86 36", "B5 02 00 00 23 F4"));
    EXPECT_EQ(reading(), (QStringList{
                             "0 " + readRegisters,
                             "0 response: 00 00 00 07 FF FF FF FE",
                             "1 station 5: Read flag(s) (0x02), 9 from 100",
                             "1 response: FF 01",
                             "2 station 5: Write register(s) (0x0e), 1 from 10: 00 00 00 0C",
                             "2 " + acknowledged,
                             "3 " + switchOutput,
                             "3 " + refused,
                             "4 station 5: Write real time clock (0x0c)",
                             "4 " + acknowledged,
                         }));
}

TEST_F(CaptureInWireshark, DecodesBreakMode) {
    add(exchangeOf(Framing::BreakMode, "05 06 01 00 0A 92 B4", "00 00 00 07 FF FF FF FE EE 3A"));
    add(exchangeOf(Framing::BreakMode, "05 02 08 00 64 4B BC", "FF 01 13 DE"));
    add(exchangeOf(Framing::BreakMode, "05 0E 05 00 0A 00 00 00 0C 17 58", "06"));
    add(exchangeOf(Framing::BreakMode, "05 0D 03 00 C8 00 01 46 41", "15", Answer::Refused));
    EXPECT_EQ(reading(), (QStringList{
                             "0 " + readRegisters,
                             "0 response: 00 00 00 07 FF FF FF FE",
                             "1 station 5: Read flag(s) (0x02), 9 from 100",
                             "1 response: FF 01",
                             "2 station 5: Write register(s) (0x0e), 1 from 10: 00 00 00 0C",
                             "2 " + acknowledged,
                             "3 " + switchOutput,
                             "3 " + refused,
                         }));
}

TEST_F(CaptureInWireshark, DecodesTheClockOfASerialLine) {
    add(exchangeOf(Framing::DataMode, "B5 00 05 0C 52 07 23 12 31 23 59 58 86 36", "B5 02 00 00 23 F4"));
    EXPECT_EQ(fields({"-e", "sbus.rtc.week_day", "-e", "sbus.rtc.date", "-e", "sbus.rtc.time"}).value(0),
              "0x5207\t0x231231\t0x235958");
}

// As the user's guide tells.
TEST_F(CaptureInWireshark, CanBeFilteredByChannelStationRefusalAndResponseTime) {
    Exchange slow = readOfTwoRegisters();
    slow.roundTrip = std::chrono::milliseconds(501);
    Exchange elsewhere = exchangeOf(Framing::BreakMode, "05 0D 03 00 C8 00 01 46 41", "15", Answer::Refused);
    elsewhere.channelId = 2;
    add(slow);
    add(elsewhere);
    const auto framesThat = [this](const char* filter) {
        return fields({"-Y", filter, "-e", "frame.number"});
    };
    EXPECT_EQ(framesThat("ip.addr == 10.1.0.0/16"), (QStringList{"1", "2"}));
    EXPECT_EQ(framesThat("ip.addr == 10.2.1.5"), (QStringList{"3", "4"}));
    EXPECT_EQ(framesThat("sbus.att == 2"), QStringList{"4"});
    EXPECT_EQ(framesThat("sbus.nakcode != 0"), QStringList{"4"});
    EXPECT_EQ(framesThat("sbus.response_time > 0.5"), QStringList{"2"});
}

// The lines of a site number their telegrams each for itself.
TEST_F(CaptureInWireshark, KeepsLinesAndStationsApart) {
    Exchange first = exchangeOf(Framing::BreakMode, "05 06 01 00 0A 92 B4", "00 00 00 07 FF FF FF FE EE 3A");
    Exchange second = exchangeOf(Framing::DataMode, "B5 00 05 02 08 00 64 C0 6F", "B5 01 FF 01 69 7A");
    second.channelId = 2;
    add(first);
    add(second);
    EXPECT_EQ(reading(), (QStringList{"0 " + readRegisters, "0 response: 00 00 00 07 FF FF FF FE",
                                      "0 station 5: Read flag(s) (0x02), 9 from 100", "0 response: FF 01"}));
}

TEST_F(CaptureInWireshark, ShowsWhatIsNoTelegramAsBytes) {
    Exchange exchange = exchangeOf(Framing::DataMode, "B5 00 05 06 01 00 0A 19 67",
                                   "B5 01 00 00 00 07 FF FF FF FE 8E C7", Answer::Damaged);
    exchange.discarded = bytes("00 FF 00 00 12 34 56 78 9A BC DE F0");
    add(exchange);
    EXPECT_EQ(reading(), (QStringList{"no S-Bus telegram, 12 bytes", "0 " + readRegisters,
                                      "no S-Bus telegram, 12 bytes"}));
    EXPECT_EQ(fields({"-e", "data.data"}),
              (QStringList{"00ff0000123456789abcdef0", "b50100000007fffffffe8ec7"}));
}
