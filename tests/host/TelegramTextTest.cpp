#include "telegram/TelegramText.h"

#include <gtest/gtest.h>

namespace host {
namespace {

std::string ethernet(const char* hex, bool isFloat = false) {
    return telegramText(Framing::Ethernet, bytesOfHexText(hex), isFloat);
}

std::string dataMode(const char* hex, bool isFloat = false) {
    return telegramText(Framing::DataMode, bytesOfHexText(hex), isFloat);
}

std::string breakMode(const char* hex) {
    return telegramText(Framing::BreakMode, bytesOfHexText(hex), false);
}

} // namespace

TEST(TelegramText, TellsAReadInEachFraming) {
    EXPECT_EQ(dataMode("B5 00 01 02 08 00 64 49 69"), "read 9 flags from F100");
    EXPECT_EQ(breakMode("01 02 08 00 64 B6 8A"), "read 9 flags from F100");
    EXPECT_EQ(ethernet("00 00 00 10 01 00 00 00 00 05 06 00 00 0A 12 34"), "read R10");
}

TEST(TelegramText, TellsWrittenWords) {
    EXPECT_EQ(dataMode("B5 00 05 0E 09 00 0A 00 00 00 0C 00 00 00 0D 2D 43"),
              "write 2 registers from R10: 12, 13");
    EXPECT_EQ(breakMode("05 0F 05 00 05 00 00 00 64 D8 DC"), "write T5: 100");
    EXPECT_EQ(ethernet("00 00 00 14 01 00 00 03 00 05 0A 05 00 1E FF FF FF FE 66 6A"), "write C30: -2");
}

TEST(TelegramText, TellsFloatingPointWords) {
    EXPECT_EQ(dataMode("B5 00 05 0E 05 00 1E C0 00 00 41 4F 2A", true), "write R30: 1.5");
    EXPECT_EQ(dataMode("B5 00 05 0E 05 00 1E C8 00 00 C7 4F 2A", true), "write R30: -100");
}

TEST(TelegramText, TellsSwitchedBits) {
    EXPECT_EQ(dataMode("B5 00 05 0D 03 00 C8 00 01 7A 3D"), "switch O200 on");
    EXPECT_EQ(dataMode("B5 00 05 0B 03 00 07 00 00 7A 3D"), "switch F7 off");
    EXPECT_EQ(dataMode("B5 00 05 0D 03 00 C8 02 05 7A 3D"), "switch 3 outputs from O200: on off on");
}

TEST(TelegramText, TellsTheClock) {
    const char* const text = "set the clock to 2023-12-31 23:59:58, Sunday, week 52";
    EXPECT_EQ(dataMode("B5 00 05 0C 52 07 23 12 31 23 59 58 00 00"), text);
    EXPECT_EQ(breakMode("05 0C 52 07 23 12 31 23 59 58 00 00"), text);
    EXPECT_EQ(ethernet("52 07 23 12 31 23 59 58 00 00"), text) << "without a header on Ethernet";
}

TEST(TelegramText, TellsNothingOfWhatItDoesNotKnow) {
    for (const char* const hex :
         {"", "B5", "B5 00 05 63 00 00", "B5 00 05 0E 05 00 00", "B5 00 05 0D 03 00 00 00"})
        EXPECT_EQ(dataMode(hex), "unknown") << hex;
    EXPECT_EQ(ethernet("00 00 00 99 01 00 00 00 00 05 06 00 00 0A 12 34"), "unknown");
}

TEST(HexText, IsReadBack) {
    EXPECT_EQ(hexText({0xB5, 0x00, 0x0F}), "B5 00 0F");
    EXPECT_EQ(bytesOfHexText("B5 00 0F "), (TelegramBytes{0xB5, 0x00, 0x0F}));
    EXPECT_EQ(bytesOfHexText("B5 0"), (TelegramBytes{0xB5}));
    EXPECT_EQ(bytesOfHexText(""), TelegramBytes());
}

} // namespace host
