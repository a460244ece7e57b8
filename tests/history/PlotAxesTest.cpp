#include "services/history/PlotAxes.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::TimeTick;
using host::timeTicks;
using host::valueAxis;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QTimeZone zurich("Europe/Zurich");

std::int64_t utc(const char* text) {
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toMSecsSinceEpoch();
}

// "14:00", "00:00 2026-11-22"
std::vector<std::string> labels(const char* from, const char* to, std::size_t most = 10) {
    std::vector<std::string> texts;
    for (const TimeTick& tick : timeTicks(utc(from), utc(to), zurich, most))
        texts.push_back(tick.label + (tick.below.empty() ? "" : ' ' + tick.below));
    return texts;
}

std::vector<std::string> labels(const host::ValueAxis& axis) {
    std::vector<std::string> texts;
    for (const host::ValueTick& tick : axis.ticks)
        texts.push_back(tick.label);
    return texts;
}

} // namespace

TEST(TimeTicks, AreAtRoundLocalTimes) {
    EXPECT_THAT(labels("2026-11-22T12:03:20Z", "2026-11-22T12:04:00Z"),
                ElementsAre("13:03:20 2026-11-22", "13:03:25", "13:03:30", "13:03:35", "13:03:40", "13:03:45",
                            "13:03:50", "13:03:55"));
    EXPECT_THAT(labels("2026-11-22T12:07:00Z", "2026-11-22T13:07:00Z", 6),
                ElementsAre("13:10 2026-11-22", "13:20", "13:30", "13:40", "13:50", "14:00"));
    EXPECT_THAT(labels("2026-11-21T17:30:00Z", "2026-11-22T17:30:00Z", 8),
                ElementsAre("21:00 2026-11-21", "00:00 2026-11-22", "03:00", "06:00", "09:00", "12:00",
                            "15:00", "18:00"));
}

TEST(TimeTicks, OfLongTimesAreDaysWeeksAndMonths) {
    EXPECT_THAT(labels("2026-12-29T12:00:00Z", "2027-01-02T12:00:00Z", 4),
                ElementsAre("12-30 2026", "12-31", "01-01 2027", "01-02"));
    EXPECT_THAT(labels("2026-11-01T00:00:00Z", "2026-11-30T00:00:00Z", 5),
                ElementsAre("11-02 2026", "11-09", "11-16", "11-23", "11-30"));
    EXPECT_THAT(labels("2026-01-15T00:00:00Z", "2027-02-01T00:00:00Z", 5),
                ElementsAre("2026-04", "2026-07", "2026-10", "2027-01"));
}

TEST(TimeTicks, ComeTwiceInTheHourThatComesTwice) {
    EXPECT_THAT(labels("2026-10-24T22:30:00Z", "2026-10-25T03:30:00Z"),
                ElementsAre("00:30 2026-10-25", "01:00", "01:30", "02:00", "02:30", "02:00", "02:30", "03:00",
                            "03:30", "04:00"));
}

TEST(TimeTicks, StayRoundBehindAChangeOfTheClocks) {
    EXPECT_THAT(
        labels("2026-03-28T23:00:00Z", "2026-03-29T22:00:00Z", 8),
        ElementsAre("00:00 2026-03-29", "03:00", "06:00", "09:00", "12:00", "15:00", "18:00", "21:00"));
    EXPECT_THAT(labels("2026-10-24T22:00:00Z", "2026-10-25T23:00:00Z", 13),
                ElementsAre("00:00 2026-10-25", "02:00", "02:00", "04:00", "06:00", "08:00", "10:00", "12:00",
                            "14:00", "16:00", "18:00", "20:00", "22:00"));
}

TEST(TimeTicks, LieWhereTheirTimeIs) {
    const auto ticks = timeTicks(utc("2026-03-28T23:00:00Z"), utc("2026-03-29T22:00:00Z"), zurich, 8);
    EXPECT_EQ(ticks[1].timeMs, utc("2026-03-29T01:00:00Z"));
}

TEST(ZoneText, TellsOfAChangeOfTheClocks) {
    EXPECT_EQ(host::zoneText(utc("2026-11-22T12:00:00Z"), utc("2026-11-22T13:00:00Z"), zurich),
              "Europe/Zurich, UTC+01:00");
    EXPECT_EQ(host::zoneText(utc("2026-10-24T12:00:00Z"), utc("2026-10-25T13:00:00Z"), zurich),
              "Europe/Zurich, UTC+02:00, from 2026-10-25 02:00 on UTC+01:00");
}

TEST(ValueAxis, HasRoundTicksAndRoomAroundTheValues) {
    const host::ValueAxis axis = valueAxis(0.3, 9.7, 6);
    EXPECT_LT(axis.low, 0.3);
    EXPECT_GT(axis.high, 9.7);
    EXPECT_THAT(labels(axis), ElementsAre("0", "2", "4", "6", "8", "10"));
    EXPECT_THAT(labels(valueAxis(-0.012, 0.031, 6)), ElementsAre("-0.01", "0.00", "0.01", "0.02", "0.03"));
    EXPECT_THAT(labels(valueAxis(1e9, 3e9, 4)), ElementsAre("1e+09", "2e+09", "3e+09"));
}

TEST(ValueAxis, HasRoomAroundAValueThatStays) {
    EXPECT_THAT(labels(valueAxis(20, 20, 4)), ElementsAre("18", "20", "22"));
    EXPECT_THAT(labels(valueAxis(0, 0, 4)), ElementsAre("-0.1", "0.0", "0.1"));
}
