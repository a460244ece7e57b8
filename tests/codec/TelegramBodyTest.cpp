#include "Printers.h"

#include <Telegram.h>

#include <gtest/gtest.h>

namespace {

QByteArray readBody(const SBusRequestItem& item, int station) {
    QByteArray frame;
    sbus::appendReadBody(frame, item, station);
    return toHex(frame);
}

QByteArray writeBody(const SBusRequestItem& item, int station) {
    QByteArray frame;
    sbus::appendWriteBody(frame, item, station);
    return toHex(frame);
}

} // namespace

TEST(TelegramBody, AReadIsStationCommandCountAddress) {
    EXPECT_EQ(readBody({6, 1, 10, {}}, 5), "05 06 01 00 0A");
}

TEST(TelegramBody, ABodyComesBehindWhatIsThere) {
    QByteArray frame = hex("B5 00");
    sbus::appendReadBody(frame, {6, 1, 10, {}}, 5);
    EXPECT_EQ(toHex(frame), "B5 00 05 06 01 00 0A");
    sbus::appendWriteBody(frame, {12, 3, 7, hex("01")}, 5);
    EXPECT_EQ(toHex(frame), "B5 00 05 06 01 00 0A 05 0C 01");
}

TEST(TelegramBody, OnlyTheLowBitsOfLargeNumbersGoOut) {
    // Station 261, 257 elements, address 65,546.
    EXPECT_EQ(readBody({2, 0x100, 0x1000A, {}}, 0x105), "05 02 00 00 0A");
}

TEST(TelegramBody, AWriteOfBitsHoldsByteCountAddressElementCountData) {
    EXPECT_EQ(writeBody({11, 8, 100, hex("FF 01")}, 5), "05 0B 04 00 64 08 FF 01");
    EXPECT_EQ(writeBody({13, 0, 32, hex("00")}, 5), "05 0D 03 00 20 00 00");
}

TEST(TelegramBody, AWriteOfWordsHoldsByteCountAddressData) {
    EXPECT_EQ(writeBody({10, 0, 20, hex("00 00 00 07")}, 5), "05 0A 05 00 14 00 00 00 07");
    EXPECT_EQ(writeBody({14, 0, 200, hex("FF FF FF FE")}, 5), "05 0E 05 00 C8 FF FF FF FE");
    EXPECT_EQ(writeBody({15, 0, 300, hex("00 00 00 0A")}, 5), "05 0F 05 01 2C 00 00 00 0A");
}

TEST(TelegramBody, TheElementCountOfAWordWriteStaysAtHome) {
    EXPECT_EQ(writeBody({14, 99, 200, hex("00 00 00 01")}, 5), "05 0E 05 00 C8 00 00 00 01");
}

TEST(TelegramBody, TheClockWriteIsItsDataBehindTheCommand) {
    EXPECT_EQ(writeBody({12, 3, 7, hex("01 02 03")}, 5), "05 0C 01 02 03");
}

TEST(TelegramBody, AWriteAddressAbove32767KeepsItsBytes) {
    EXPECT_EQ(writeBody({14, 0, 0xFFFF, hex("00 00 00 01")}, 5), "05 0E 05 FF FF 00 00 00 01");
    EXPECT_EQ(writeBody({11, 0, 0x18000, hex("01")}, 5), "05 0B 03 80 00 00 01");
}

TEST(TelegramBody, TheAnswerToAWordReadHoldsFourBytesAnElement) {
    for (const quint32 command : {0u, 6u, 7u}) {
        EXPECT_EQ(sbus::readPayloadSize({command, 0, 0, {}}), 4) << command;
        EXPECT_EQ(sbus::readPayloadSize({command, 31, 0, {}}), 128) << command;
        EXPECT_EQ(sbus::readPayloadSize({command, 127, 0, {}}), 512) << command;
    }
}

TEST(TelegramBody, TheAnswerToABitReadHoldsOneBitAnElementInWholeBytes) {
    for (const quint32 command : {2u, 3u, 5u}) {
        EXPECT_EQ(sbus::readPayloadSize({command, 0, 0, {}}), 1) << command;
        EXPECT_EQ(sbus::readPayloadSize({command, 7, 0, {}}), 1) << command;
        EXPECT_EQ(sbus::readPayloadSize({command, 8, 0, {}}), 2) << command;
        EXPECT_EQ(sbus::readPayloadSize({command, 127, 0, {}}), 16) << command;
    }
}

TEST(TelegramBody, WhatIsNoReadHasNoPayload) {
    for (const quint32 command : {1u, 4u, 8u, 9u, 10u, 11u, 12u, 13u, 14u, 15u, 16u})
        EXPECT_EQ(sbus::readPayloadSize({command, 7, 0, {}}), 0) << command;
}
