#include "Printers.h"
#include "ReferenceTelegram.h"

#include <ClockBytes.h>

#include <gtest/gtest.h>

namespace {

// The bytes for "2023-12-31 23:59:58".
QByteArray bytesAt(const char* text) {
    const QDateTime time =
        QDateTime::fromString(QString::fromLatin1(text), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    EXPECT_TRUE(time.isValid()) << text;
    return toHex(sbus::clockBytes(time));
}

} // namespace

TEST(PackedBcd, ZeroIsZero) {
    EXPECT_EQ(sbus::packedBcd(0), 0x00);
}

TEST(PackedBcd, HasTheTensInTheHighNibbleAndTheUnitsInTheLow) {
    for (int tens = 0; tens <= 9; ++tens)
        for (int units = 0; units <= 9; ++units)
            EXPECT_EQ(sbus::packedBcd(10 * tens + units), 16 * tens + units) << tens << units;
}

TEST(PackedBcd, KeepsTheLowTwoDigits) {
    EXPECT_EQ(sbus::packedBcd(100), 0x00);
    EXPECT_EQ(sbus::packedBcd(101), 0x01);
    EXPECT_EQ(sbus::packedBcd(199), 0x99);
    EXPECT_EQ(sbus::packedBcd(2024), 0x24);
    EXPECT_EQ(sbus::packedBcd(12345678), 0x78);
    EXPECT_EQ(sbus::packedBcd(2147483647), 0x47);
}

TEST(ClockBytes, AreWeekWeekdayYearMonthDayHourMinuteSecond) {
    EXPECT_EQ(bytesAt("2023-12-31 23:59:58"), "52 07 23 12 31 23 59 58"); // a Sunday
    EXPECT_EQ(bytesAt("2024-01-01 00:00:00"), "01 01 24 01 01 00 00 00"); // a Monday
}

TEST(ClockBytes, HoldTheYearOfTheDateBesideTheWeekOfTheOtherYear) {
    EXPECT_EQ(bytesAt("2021-01-01 12:00:00"), "53 05 21 01 01 12 00 00"); // week 53 of 2020
    EXPECT_EQ(bytesAt("2020-12-31 12:00:00"), "53 04 20 12 31 12 00 00");
    EXPECT_EQ(bytesAt("2021-01-04 12:00:00"), "01 01 21 01 04 12 00 00");
    EXPECT_EQ(bytesAt("2024-12-30 12:00:00"), "01 01 24 12 30 12 00 00"); // week 1 of 2025
    EXPECT_EQ(bytesAt("2022-01-01 12:00:00"), "52 06 22 01 01 12 00 00"); // week 52 of 2021
}

TEST(ClockBytes, CountTheWeekdaysFromMonday) {
    EXPECT_EQ(bytesAt("2024-05-06 12:00:00"), "19 01 24 05 06 12 00 00");
    EXPECT_EQ(bytesAt("2024-05-07 12:00:00"), "19 02 24 05 07 12 00 00");
    EXPECT_EQ(bytesAt("2024-05-11 12:00:00"), "19 06 24 05 11 12 00 00");
    EXPECT_EQ(bytesAt("2024-05-12 12:00:00"), "19 07 24 05 12 12 00 00");
    EXPECT_EQ(bytesAt("2024-05-13 12:00:00"), "20 01 24 05 13 12 00 00");
}

TEST(ClockBytes, HoldTheLeapDay) {
    EXPECT_EQ(bytesAt("2024-02-29 12:00:00"), "09 04 24 02 29 12 00 00");
}

TEST(ClockBytes, CountTheYearFrom2000) {
    EXPECT_EQ(bytesAt("2000-06-15 12:00:00"), "24 04 00 06 15 12 00 00");
    EXPECT_EQ(bytesAt("2009-06-15 12:00:00"), "25 01 09 06 15 12 00 00");
    EXPECT_EQ(bytesAt("2010-06-15 12:00:00"), "24 02 10 06 15 12 00 00");
    EXPECT_EQ(bytesAt("2099-06-15 12:00:00"), "25 01 99 06 15 12 00 00");
}

TEST(ClockBytes, LoseTheHundredsOfTheYear) {
    EXPECT_EQ(bytesAt("2100-06-15 12:00:00"), "24 02 00 06 15 12 00 00");
    EXPECT_EQ(bytesAt("2123-06-15 12:00:00"), "24 02 23 06 15 12 00 00");
}

TEST(ClockBytes, PassTheMillisecondsOver) {
    const QDateTime time(QDate(2024, 5, 6), QTime(7, 8, 9, 999));
    EXPECT_EQ(toHex(sbus::clockBytes(time)), "19 01 24 05 06 07 08 09");
}

TEST(ClockBytes, AreRightOnEveryDayOfTheCentury) {
    const QDate end(2100, 1, 1);
    for (QDate date(2000, 1, 1); date < end; date = date.addDays(1)) {
        const QDateTime time(date, QTime(12, 34, 56));
        ASSERT_EQ(toHex(sbus::clockBytes(time)), toHex(referenceClockBytes(time)))
            << date.toString(Qt::ISODate);
    }
}

TEST(ClockBytes, AreRightInEverySecondOfADay) {
    for (int second = 0; second < 24 * 60 * 60; ++second) {
        const QDateTime time(QDate(2024, 1, 15), QTime(0, 0).addSecs(second));
        ASSERT_EQ(toHex(sbus::clockBytes(time)), toHex(referenceClockBytes(time))) << second;
    }
}
