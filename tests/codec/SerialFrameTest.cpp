#include "Printers.h"

#include <SerialTelegram.h>

#include <gtest/gtest.h>

using sbus::serial::Mode;
using sbus::serial::modeOf;
using sbus::serial::readFrame;
using sbus::serial::writeFrame;

namespace {

struct Row {
    SBusRequestItem item;
    const char* inBreakMode;
    const char* inDataMode;
};

} // namespace

TEST(SerialFrame, NineFlagsAt100InBreakMode) {
    EXPECT_EQ(toHex(readFrame({2, 8, 100, {}}, 1, Mode::Break)), "01 02 08 00 64 C2 BA");
}

TEST(SerialFrame, NineFlagsAt100InDataModeWithTheChecksumOverTheLeadingBytesToo) {
    EXPECT_EQ(toHex(readFrame({2, 8, 100, {}}, 1, Mode::Data)), "B5 00 01 02 08 00 64 49 69");
}

TEST(SerialFrame, EveryReadHasItsTelegramInBothModes) {
    const Row rows[] = {
        {{0, 30, 0, {}}, "05 00 1E 00 00 7B 35", "B5 00 05 00 1E 00 00 F0 E6"},
        {{2, 127, 0, {}}, "05 02 7F 00 00 3A 06", "B5 00 05 02 7F 00 00 B1 D5"},
        {{3, 2, 10, {}}, "05 03 02 00 0A 77 A1", "B5 00 05 03 02 00 0A FC 72"},
        {{5, 0, 65535, {}}, "05 05 00 FF FF 82 1D", "B5 00 05 05 00 FF FF 09 CE"},
        {{6, 1, 10, {}}, "05 06 01 00 0A 92 B4", "B5 00 05 06 01 00 0A 19 67"},
        {{7, 0, 300, {}}, "05 07 00 01 2C A4 A5", "B5 00 05 07 00 01 2C 2F 76"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(toHex(readFrame(row.item, 5, Mode::Break)), row.inBreakMode);
        EXPECT_EQ(toHex(readFrame(row.item, 5, Mode::Data)), row.inDataMode);
    }
}

TEST(SerialFrame, EveryWriteHasItsTelegramInBothModes) {
    const Row rows[] = {
        {{10, 0, 20, hex("00 00 00 07")},
         "05 0A 05 00 14 00 00 00 07 62 AC",
         "B5 00 05 0A 05 00 14 00 00 00 07 9D 4F"},
        {{11, 0, 100, hex("01")}, "05 0B 03 00 64 00 01 03 5D", "B5 00 05 0B 03 00 64 00 01 3F 21"},
        {{11, 8, 100, hex("FF 01")}, "05 0B 04 00 64 08 FF 01 2C 6C", "B5 00 05 0B 04 00 64 08 FF 01 A7 B3"},
        {{12, 0, 0, hex("01 02 03")}, "05 0C 01 02 03 0D 54", "B5 00 05 0C 01 02 03 86 87"},
        {{13, 0, 32, hex("00")}, "05 0D 03 00 20 00 00 5F F0", "B5 00 05 0D 03 00 20 00 00 63 8C"},
        {{14, 0, 200, hex("FF FF FF FE")},
         "05 0E 05 00 C8 FF FF FF FE 28 01",
         "B5 00 05 0E 05 00 C8 FF FF FF FE D7 E2"},
        {{14, 1, 200, hex("00 00 00 01 00 00 00 02")},
         "05 0E 09 00 C8 00 00 00 01 00 00 00 02 69 18",
         "B5 00 05 0E 09 00 C8 00 00 00 01 00 00 00 02 DB DA"},
        {{15, 0, 300, hex("00 00 00 0A")},
         "05 0F 05 01 2C 00 00 00 0A B0 DC",
         "B5 00 05 0F 05 01 2C 00 00 00 0A 4F 3F"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(toHex(writeFrame(row.item, 5, Mode::Break)), row.inBreakMode);
        EXPECT_EQ(toHex(writeFrame(row.item, 5, Mode::Data)), row.inDataMode);
    }
}

TEST(SerialFrame, AnyOtherModeHasTheLayoutOfBreakMode) {
    EXPECT_EQ(toHex(readFrame({2, 8, 100, {}}, 1, Mode::Other)), "01 02 08 00 64 C2 BA");
    EXPECT_EQ(toHex(writeFrame({13, 0, 32, hex("00")}, 5, Mode::Other)), "05 0D 03 00 20 00 00 5F F0");
}

TEST(SerialFrame, TheModesAreNumberedZeroForDataOneForBreakAndAnyOther) {
    EXPECT_EQ(modeOf(0), Mode::Data);
    EXPECT_EQ(modeOf(1), Mode::Break);
    for (const int number : {-2'147'483'647, -1, 2, 3, 256, 2'147'483'647})
        EXPECT_EQ(modeOf(number), Mode::Other) << number;
}

TEST(SerialFrame, TheSynchronisationByteIsNotEscapedInAReadTelegram) {
    EXPECT_EQ(toHex(readFrame({6, 0, 0xB5B5, {}}, 0xB5, Mode::Data)), "B5 00 B5 06 00 B5 B5 B7 A5");
}

TEST(SerialFrame, TheSynchronisationByteIsNotEscapedInAWriteTelegram) {
    EXPECT_EQ(toHex(writeFrame({14, 0, 0xB5, hex("B5 B5 B5 B5")}, 5, Mode::Data)),
              "B5 00 05 0E 05 00 B5 B5 B5 B5 B5 2C ED");
}
