#include "services/capture/EthernetForm.h"

#include "Exchanges.h"

#include <gtest/gtest.h>

using host::answerAsEthernet;
using host::Framing;
using host::requestAsEthernet;
using host::TelegramBytes;

namespace {

std::string textOrNone(const std::optional<TelegramBytes>& telegram) {
    return telegram ? text(*telegram) : "none";
}

} // namespace

TEST(EthernetForm, OfARequestKeepsStationCommandAndData) {
    const std::string asEthernet = "00 00 00 14 01 00 00 00 00 05 0E 05 00 0A 00 00 00 0C B9 01";
    EXPECT_EQ(
        textOrNone(requestAsEthernet(bytes("B5 00 05 0E 05 00 0A 00 00 00 0C E8 BB"), Framing::DataMode, 0)),
        asEthernet);
    EXPECT_EQ(textOrNone(requestAsEthernet(bytes("05 0E 05 00 0A 00 00 00 0C 17 58"), Framing::BreakMode, 0)),
              asEthernet);
}

TEST(EthernetForm, OfAResponseKeepsItsData) {
    const std::string asEthernet = "00 00 00 13 01 00 00 00 01 00 00 00 07 FF FF FF FE 0B 2E";
    EXPECT_EQ(
        textOrNone(answerAsEthernet(bytes("B5 01 00 00 00 07 FF FF FF FE 8E C6"), Framing::DataMode, 0)),
        asEthernet);
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("00 00 00 07 FF FF FF FE EE 3A"), Framing::BreakMode, 0)),
              asEthernet);
}

TEST(EthernetForm, OfAnAcknowledgeCarriesItsCode) {
    const std::string done = "00 00 00 0D 01 00 00 00 02 00 00 80 65";
    const std::string refused = "00 00 00 0D 01 00 00 00 02 00 01 90 44";
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("B5 02 00 00 23 F4"), Framing::DataMode, 0)), done);
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("B5 02 00 01 33 D5"), Framing::DataMode, 0)), refused);
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("06"), Framing::BreakMode, 0)), done);
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("15"), Framing::BreakMode, 0)), refused);
}

TEST(EthernetForm, CarriesTheSequenceNumber) {
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("06"), Framing::BreakMode, 0x1234)).substr(0, 26),
              "00 00 00 0D 01 00 12 34 02");
}

TEST(EthernetForm, OfAWrongChecksumIsNone) {
    EXPECT_EQ(textOrNone(requestAsEthernet(bytes("B5 00 05 06 01 00 0A 19 66"), Framing::DataMode, 0)),
              "none");
    EXPECT_EQ(textOrNone(requestAsEthernet(bytes("05 06 01 00 0A 92 B5"), Framing::BreakMode, 0)), "none");
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("B5 02 00 00 23 F5"), Framing::DataMode, 0)), "none");
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("00 00 00 07 FF FF FF FE EE 3B"), Framing::BreakMode, 0)),
              "none");
}

// Each ends in the checksum of what is before it.
TEST(EthernetForm, OfWhatIsFramedOtherwiseIsNone) {
    EXPECT_EQ(textOrNone(requestAsEthernet(bytes("05 06 01 00 0A 92 B4"), Framing::DataMode, 0)), "none");
    EXPECT_EQ(textOrNone(requestAsEthernet(bytes("B5 01 05 06 01 00 0A 5C C7"), Framing::DataMode, 0)),
              "none");
    EXPECT_EQ(textOrNone(answerAsEthernet(bytes("B5 00 05 06 01 00 0A 19 67"), Framing::DataMode, 0)),
              "none");
    EXPECT_EQ(
        textOrNone(answerAsEthernet(bytes("B5 02 00 00 00 07 FF FF FF FE A3 82"), Framing::DataMode, 0)),
        "none")
        << "an acknowledge with more than its code";
}

TEST(EthernetForm, OfWhatIsTooShortIsNone) {
    for (const char* const telegram : {"", "B5", "B5 00", "00 00", "B5 01 33"}) {
        for (const Framing framing : {Framing::DataMode, Framing::BreakMode}) {
            EXPECT_EQ(textOrNone(requestAsEthernet(bytes(telegram), framing, 0)), "none") << telegram;
            EXPECT_EQ(textOrNone(answerAsEthernet(bytes(telegram), framing, 0)), "none") << telegram;
        }
    }
}

TEST(EthernetForm, OfEthernetItselfIsNotMade) {
    const TelegramBytes read = bytes("00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC");
    EXPECT_EQ(textOrNone(requestAsEthernet(read, Framing::Ethernet, 0)), "none");
    EXPECT_EQ(textOrNone(answerAsEthernet(read, Framing::Ethernet, 0)), "none");
}
