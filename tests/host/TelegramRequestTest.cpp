#include "telegram/Framing.h"
#include "telegram/RequestTelegram.h"
#include "telegram/TelegramText.h"

#include <gtest/gtest.h>

namespace host {
namespace {

unsigned station(Framing framing, const char* hex) {
    return stationOf(framing, bytesOfHexText(hex));
}

bool isWrite(Framing framing, const char* hex) {
    return isWriteTelegram(framing, bytesOfHexText(hex));
}

} // namespace

TEST(Framing, FollowsFromTheLine) {
    EXPECT_EQ(framingOf(LineType::Serial, TransmitType::Data), Framing::DataMode);
    EXPECT_EQ(framingOf(LineType::Serial, TransmitType::Break), Framing::BreakMode);
    for (const TransmitType type : {TransmitType::Data, TransmitType::Break})
        EXPECT_EQ(framingOf(LineType::Ethernet, type), Framing::Ethernet);
}

TEST(RequestTelegram, NamesItsStation) {
    EXPECT_EQ(station(Framing::DataMode, "B5 00 FE 02 08 00 64 49 69"), 254U);
    EXPECT_EQ(station(Framing::BreakMode, "01 02 08 00 64 C2 BA"), 1U);
    EXPECT_EQ(station(Framing::Ethernet, "00 00 00 10 01 00 00 07 00 05 06 01 00 0A B1 88"), 5U);
    EXPECT_EQ(station(Framing::DataMode, "B5 00 05 0C 52 07 23 12 31 23 59 58 86 36"), 5U);
}

TEST(RequestTelegram, OfTheClockNamesNoStationOnEthernet) {
    EXPECT_EQ(station(Framing::Ethernet, "52 07 23 12 31 23 59 58 0C A6"), 0U);
}

TEST(RequestTelegram, ThatIsNoneNamesNoStation) {
    EXPECT_EQ(station(Framing::DataMode, "01 02 08 00 64 C2 BA"), 0U) << "without synchronisation";
    EXPECT_EQ(station(Framing::DataMode, "B5 01 05 01 95 70"), 0U) << "an answer";
    EXPECT_EQ(station(Framing::Ethernet, "00 00 00 10 01 00 00 07 01 05 06 01 00 0A F4 28"), 0U)
        << "an answer";
    EXPECT_EQ(station(Framing::BreakMode, "05"), 0U);
    EXPECT_EQ(station(Framing::Ethernet, "00 00 00 11 01 00 00 07 00 05 06 01 00 0A B1 88"), 0U);
}

TEST(RequestTelegram, TellsWritesFromReads) {
    EXPECT_TRUE(isWrite(Framing::DataMode, "B5 00 05 0D 03 00 C8 00 01 7A 3D"));
    EXPECT_FALSE(isWrite(Framing::DataMode, "B5 00 01 02 08 00 64 49 69"));
    EXPECT_TRUE(isWrite(Framing::BreakMode, "05 0F 05 00 05 00 00 00 64 D8 DC"));
    EXPECT_FALSE(isWrite(Framing::BreakMode, "01 02 08 00 64 C2 BA"));
    EXPECT_TRUE(isWrite(Framing::Ethernet, "00 00 00 12 01 00 00 07 00 05 0D 03 00 C8 00 01 68 ED"));
    EXPECT_FALSE(isWrite(Framing::Ethernet, "00 00 00 10 01 00 00 07 00 05 06 01 00 0A B1 88"));
    EXPECT_FALSE(isWrite(Framing::Ethernet, ""));
}

TEST(RequestTelegram, OfTheClockIsAWriteInEachFraming) {
    EXPECT_TRUE(isWrite(Framing::DataMode, "B5 00 05 0C 52 07 23 12 31 23 59 58 86 36"));
    EXPECT_TRUE(isWrite(Framing::BreakMode, "05 0C 52 07 23 12 31 23 59 58 7B C6"));
    EXPECT_TRUE(isWrite(Framing::Ethernet, "52 07 23 12 31 23 59 58 0C A6"));
}

TEST(RequestTelegram, IsAWriteByItsCommandEvenWhenCutOff) {
    EXPECT_TRUE(isWrite(Framing::DataMode, "B5 00 05 0E 05 00 00"));
}

} // namespace host
