#include "Printers.h"

#include <EthernetTelegram.h>

#include <gtest/gtest.h>

using sbus::ethernet::readFrame;
using sbus::ethernet::writeFrame;

namespace {

struct Row {
    SBusRequestItem item;
    const char* frame; // station 5, sequence number 0x1234
};

} // namespace

TEST(EthernetFrame, TwoRegistersAt10ForStation5) {
    EXPECT_EQ(toHex(readFrame({6, 1, 10, {}}, 5, 0)), "00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC");
}

TEST(EthernetFrame, EveryReadIsSixteenBytes) {
    const Row rows[] = {
        {{0, 30, 0, {}}, "00 00 00 10 01 00 12 34 00 05 00 1E 00 00 6B 14"},
        {{2, 8, 100, {}}, "00 00 00 10 01 00 12 34 00 05 02 08 00 64 5B 9D"},
        {{3, 2, 10, {}}, "00 00 00 10 01 00 12 34 00 05 03 02 00 0A 67 80"},
        {{5, 0, 65535, {}}, "00 00 00 10 01 00 12 34 00 05 05 00 FF FF 92 3C"},
        {{6, 1, 10, {}}, "00 00 00 10 01 00 12 34 00 05 06 01 00 0A 82 95"},
        {{7, 0, 300, {}}, "00 00 00 10 01 00 12 34 00 05 07 00 01 2C B4 84"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(toHex(readFrame(row.item, 5, 0x1234)), row.frame);
}

TEST(EthernetFrame, AWriteOfBitsIsItsDataAnd17Bytes) {
    const Row rows[] = {
        {{11, 0, 100, hex("01")}, "00 00 00 12 01 00 12 34 00 05 0B 03 00 64 00 01 BE AB"},
        {{11, 8, 100, hex("FF 01")}, "00 00 00 13 01 00 12 34 00 05 0B 04 00 64 08 FF 01 D7 7B"},
        {{13, 0, 32, hex("00")}, "00 00 00 12 01 00 12 34 00 05 0D 03 00 20 00 00 E2 06"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(toHex(writeFrame(row.item, 5, 0x1234)), row.frame);
}

TEST(EthernetFrame, AWriteOfWordsIsItsDataAnd16Bytes) {
    const Row rows[] = {
        {{10, 0, 20, hex("00 00 00 07")}, "00 00 00 14 01 00 12 34 00 05 0A 05 00 14 00 00 00 07 53 4F"},
        {{14, 0, 200, hex("FF FF FF FE")}, "00 00 00 14 01 00 12 34 00 05 0E 05 00 C8 FF FF FF FE 19 E2"},
        {{15, 0, 300, hex("00 00 00 0A")}, "00 00 00 14 01 00 12 34 00 05 0F 05 01 2C 00 00 00 0A 81 3F"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(toHex(writeFrame(row.item, 5, 0x1234)), row.frame);
}

TEST(EthernetFrame, TheClockTelegramIsItsDataAndChecksumAlone) {
    EXPECT_EQ(toHex(writeFrame({12, 0, 0, hex("01 02 03")}, 5, 0x1234)), "01 02 03 61 31");
}

TEST(EthernetFrame, OnlyTheClockTelegramCarriesNoSequenceNumber) {
    for (const quint32 command : {0u, 2u, 3u, 5u, 6u, 7u, 10u, 11u, 13u, 14u, 15u})
        EXPECT_TRUE(sbus::ethernet::carriesSequence(command)) << command;
    EXPECT_FALSE(sbus::ethernet::carriesSequence(12));
}

TEST(EthernetFrame, TheHighestSequenceNumberFillsBothBytes) {
    EXPECT_EQ(toHex(readFrame({6, 1, 10, {}}, 5, 0xFFFF)), "00 00 00 10 01 00 FF FF 00 05 06 01 00 0A 99 F2");
}
