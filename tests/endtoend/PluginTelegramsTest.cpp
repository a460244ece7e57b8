#include "Dissection.h"
#include "Plant.h"
#include "Printers.h"
#include "ReferenceTelegram.h"
#include "TappedLink.h"

#include <HalvexDriverComponent/CReply.h>

#include <gtest/gtest.h>

// The telegrams that the plug-in itself makes of its polls and commands, as a referee from outside reads
// them on the line to a simulated controller.

using Halvex::DriverErrorResult;
using sim::Media;

namespace {

class PluginTelegrams : public testing::Test {
protected:
    PluginTelegrams() {
        plant.setSessionTimeOut(30'000);
        plant.setScanPeriods({0, 0, 0}); // the one poll is that of the connection
        plant.wrapLinks([this](std::unique_ptr<CLink> link) -> std::unique_ptr<CLink> {
            return std::make_unique<TappedLink>(std::move(link), capture);
        });
    }

    void addRegisters(unsigned first, unsigned count,
                      Halvex::PointDataType type = Halvex::PointDataType::Integer) {
        for (unsigned i = first; i < first + count; ++i)
            plant.addAnalogPoint(5, i, QStringLiteral("R%1").arg(i), type);
    }

    void addOutput(unsigned number, const QString& address) {
        plant.addStatusPoint(5, number, {}).firstOutputAddress = address;
    }

    void startAndPoll() {
        plant.start();
        ASSERT_TRUE(Plant::eventually([this] { return plant.rtu(5).GetRtuStatus().requests == 1; }));
    }

    // How the command ended, in the end.
    DriverErrorResult run(const std::function<int(CRtu&, CReply*)>& command) {
        constexpr int patienceMs = 60'000;
        auto* const reply = new CReply(&plant.channel());
        EXPECT_EQ(command(plant.rtu(5), reply), 0);
        return reply->wait(patienceMs).value();
    }

    DriverErrorResult switchOutput(unsigned number, signed char state) {
        return run([=](CRtu& rtu, CReply* reply) { return rtu.statusWrite(number, state, reply); });
    }

    DriverErrorResult setPoint(unsigned number, double value) {
        return run([=](CRtu& rtu, CReply* reply) { return rtu.analogWrite(number, value, reply); });
    }

    DriverErrorResult setPoints(const QMap<unsigned, double>& values) {
        return run([&](CRtu& rtu, CReply* reply) { return rtu.analogWriteList(values, reply); });
    }

    // Ends the line. What the referee reads behind so many telegrams and their answers.
    QStringList readingBehind(int exchanges) {
        EXPECT_TRUE(plant.stop());
        return dissect(capture).mid(2 * exchanges);
    }
    QStringList reading() { return readingBehind(0); }

    // "00 00 00 01 00 00 00 02 ..."
    static QString words(unsigned first, unsigned count) {
        QByteArray bytes;
        for (unsigned i = first; i < first + count; ++i)
            bytes += bigEndian32(i);
        return QString::fromLatin1(toHex(bytes));
    }

    Capture capture; // outlives the link, which is the plant's
    Plant plant{LineType::Ethernet, {5}};
};

} // namespace

TEST_F(PluginTelegrams, APollReadsEachRunOfElements) {
    unsigned point = 1000;
    for (const char* const address : {"I10", "I11", "I12", "O255", "F256", "F257"})
        plant.addStatusPoint(5, point++, QString::fromLatin1(address));
    for (const char* const address : {"C5", "C6", "T0", "R65535"})
        plant.addAnalogPoint(5, point++, QString::fromLatin1(address));
    addRegisters(0, 127);
    for (unsigned i = 0; i < 127; ++i)
        plant.memory(5).set(Media::Registers, i, i);
    plant.memory(5).set(Media::Inputs, 11, 1);
    plant.memory(5).set(Media::Outputs, 255, 1);
    plant.memory(5).set(Media::Flags, 257, 1);
    plant.memory(5).set(Media::Counters, 5, {0xFFFFFFFE, 7});
    plant.memory(5).set(Media::Timers, 0, 600);
    startAndPoll();
    EXPECT_EQ(
        reading(),
        (QStringList{"0 station 5: Read flag(s) (0x02), 2 from 256", "0 response: 02",
                     "1 station 5: Read input(s) (0x03), 3 from 10", "1 response: 02",
                     "2 station 5: Read output(s) (0x05), 1 from 255", "2 response: 01",
                     "3 station 5: Read counter(s) (0x00), 2 from 5", "3 response: FF FF FF FE 00 00 00 07",
                     "4 station 5: Read register(s) (0x06), 127 from 0", "4 response: " + words(0, 127),
                     "5 station 5: Read register(s) (0x06), 1 from 65535", "5 response: 00 00 00 00",
                     "6 station 5: Read timer(s) (0x07), 1 from 0", "6 response: 00 00 02 58"}));
}

TEST_F(PluginTelegrams, AnOutputAndAFlagAreSwitchedByOneBit) {
    addOutput(1, QStringLiteral("O255"));
    addOutput(2, QStringLiteral("F65535"));
    startAndPoll();
    EXPECT_EQ(switchOutput(1, 1), DriverErrorResult::Success);
    EXPECT_EQ(switchOutput(1, 0), DriverErrorResult::Success);
    EXPECT_EQ(switchOutput(2, 1), DriverErrorResult::Success);
    EXPECT_EQ(reading(),
              (QStringList{"0 station 5: Write output(s) (0x0d), 1 from 255: 01", "0 " + acknowledged,
                           "1 station 5: Write output(s) (0x0d), 1 from 255: 00", "1 " + acknowledged,
                           "2 station 5: Write flag(s) (0x0b), 1 from 65535: 01", "2 " + acknowledged}));
}

// An input cannot be written: the command goes out with the code that is preset.
TEST_F(PluginTelegrams, AnOutputAtAnInputIsAReadOfACounter) {
    addOutput(1, QStringLiteral("I12"));
    startAndPoll();
    EXPECT_EQ(switchOutput(1, 1), DriverErrorResult::Success);
    EXPECT_EQ(reading(),
              (QStringList{"0 station 5: Read counter(s) (0x00), 1 from 12", "0 response: 00 00 00 00"}));
}

// A binary command writes one byte, to a register, timer or counter as well. tshark counts their data in
// whole words, finds none, and takes the data byte for the beginning of the checksum. The checksum stands
// behind it and is correct.
TEST_F(PluginTelegrams, AnOutputAtAWordIsOneByteWhereTheRefereeExpectsFour) {
    addOutput(1, QStringLiteral("R200"));
    addOutput(2, QStringLiteral("T200"));
    addOutput(3, QStringLiteral("C200"));
    startAndPoll();
    for (const unsigned output : {1U, 2U, 3U})
        EXPECT_EQ(switchOutput(output, 1), DriverErrorResult::BadData);
    const QStringList read = reading();
    ASSERT_EQ(read.size(), 6);
    int i = 0;
    for (const char* const name : {"register(s) (0x0e)", "timer(s) (0x0f)", "counter(s) (0x0a)"}) {
        const QByteArray sent = capture.datagrams()[i].bytes;
        EXPECT_EQ(toHex(sent), toHex(withChecksum(sent.chopped(2))));
        const QString request = QStringLiteral("%1 station 5: Write %2, 0 from 200: ").arg(i / 2).arg(name);
        EXPECT_TRUE(read[i].startsWith(request)) << read[i];
        EXPECT_TRUE(read[i].endsWith(QStringLiteral("[checksum not correct]"))) << read[i];
        EXPECT_EQ(read[i + 1], QStringLiteral("%1 ").arg(i / 2) + refused);
        i += 2;
    }
}

TEST_F(PluginTelegrams, ASetPointIsOneWord) {
    plant.addAnalogPoint(5, 1, QStringLiteral("R256"));
    plant.addAnalogPoint(5, 2, QStringLiteral("R65535"), Halvex::PointDataType::Float);
    plant.addAnalogPoint(5, 3, QStringLiteral("T7"));
    plant.addAnalogPoint(5, 4, QStringLiteral("C8"));
    startAndPoll();
    constexpr int polled = 4;
    EXPECT_EQ(setPoint(1, 12.7), DriverErrorResult::Success);
    EXPECT_EQ(setPoint(2, 1.0), DriverErrorResult::Success);
    EXPECT_EQ(setPoint(3, 600.0), DriverErrorResult::Success);
    EXPECT_EQ(setPoint(4, -1.0), DriverErrorResult::Success);
    EXPECT_EQ(
        readingBehind(polled),
        (QStringList{"4 station 5: Write register(s) (0x0e), 1 from 256: 00 00 00 0C", "4 " + acknowledged,
                     "5 station 5: Write register(s) (0x0e), 1 from 65535: 80 00 00 41", "5 " + acknowledged,
                     "6 station 5: Write timer(s) (0x0f), 1 from 7: 00 00 02 58", "6 " + acknowledged,
                     "7 station 5: Write counter(s) (0x0a), 1 from 8: FF FF FF FF", "7 " + acknowledged}));
}

TEST_F(PluginTelegrams, AListOf40RegistersIsATelegramOf31AndOneOf9) {
    addRegisters(200, 40);
    startAndPoll();
    constexpr int polled = 1;
    QMap<unsigned, double> values;
    for (unsigned i = 200; i < 240; ++i)
        values[i] = i;
    EXPECT_EQ(setPoints(values), DriverErrorResult::Success);
    EXPECT_EQ(readingBehind(polled),
              (QStringList{"1 station 5: Write register(s) (0x0e), 31 from 200: " + words(200, 31),
                           "1 " + acknowledged,
                           "2 station 5: Write register(s) (0x0e), 9 from 231: " + words(231, 9),
                           "2 " + acknowledged}));
}

// A list writes eight bytes for each floating-point register, an IEEE double. The referee, who counts four
// bytes a register, reads two registers of each.
TEST_F(PluginTelegrams, AListOfFloatsIsTwiceAsManyRegistersToTheReferee) {
    addRegisters(10, 2, Halvex::PointDataType::Float);
    startAndPoll();
    constexpr int polled = 1;
    EXPECT_EQ(setPoints({{10, 1.0}, {11, -2.0}}), DriverErrorResult::Success);
    EXPECT_EQ(readingBehind(polled),
              (QStringList{"1 station 5: Write register(s) (0x0e), 4 from 10: 3F F0 00 00 00 00 00 00 C0 00 "
                           "00 00 00 00 00 00",
                           "1 " + acknowledged}));
}

// The clock telegram is its data and checksum alone, see the tests of the referee; no controller answers it.
TEST_F(PluginTelegrams, AClockSettingIsNoTelegramToTheReferee) {
    plant.setSessionTimeOut(50);
    addOutput(1, QStringLiteral("O1"));
    startAndPoll();
    EXPECT_EQ(run([](CRtu& rtu, CReply* reply) { return rtu.timeSync(reply); }),
              DriverErrorResult::ChannelError);
    EXPECT_EQ(reading(), QStringList{QStringLiteral("no S-Bus telegram, 10 bytes")});
}
