#include "services/history/HistoryTimes.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::isoTimeText;
using host::stretchTimes;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::int64_t second = 1'000;
constexpr std::int64_t minute = 60 * second;
constexpr std::int64_t hour = 60 * minute;

// In 2026 the clocks are set on in the night to 29 March, and back in the night to 25 October.
class HistoryTimes : public testing::Test {
protected:
    std::int64_t utc(const char* text) const {
        return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toMSecsSinceEpoch();
    }
    std::string parsed(const std::string& text) const {
        const auto time = host::parseHistoryTime(text, now, zone);
        return time ? QDateTime::fromMSecsSinceEpoch(*time, Qt::UTC).toString(Qt::ISODate).toStdString()
                    : "none";
    }
    std::vector<std::string> stretches(const char* from, const char* to, std::int64_t length) const {
        std::vector<std::string> texts;
        for (const std::int64_t time : stretchTimes(utc(from), utc(to), length, zone, 100))
            texts.push_back(isoTimeText(time, zone));
        return texts;
    }

    const QTimeZone zone{"Europe/Zurich"};
    const std::int64_t now = utc("2026-11-22T12:00:00Z");
};

} // namespace

TEST_F(HistoryTimes, AreLocalOnesUnlessTheyHaveAnOffset) {
    EXPECT_EQ(parsed("2026-11-22"), "2026-11-21T23:00:00Z");
    EXPECT_EQ(parsed("2026-07-01 14:00"), "2026-07-01T12:00:00Z");
    EXPECT_EQ(parsed("2026-11-22T14:00:30"), "2026-11-22T13:00:30Z");
    EXPECT_EQ(parsed("2026-11-22T14:00:30Z"), "2026-11-22T14:00:30Z");
    EXPECT_EQ(parsed("2026-11-22T14:00:30-05:00"), "2026-11-22T19:00:30Z");
    EXPECT_EQ(parsed("2026-11-22 14:00+01:00"), "2026-11-22T13:00:00Z");
}

TEST_F(HistoryTimes, CanBeGivenByHowLongAgoTheyWere) {
    EXPECT_EQ(parsed("now"), "2026-11-22T12:00:00Z");
    EXPECT_EQ(parsed("-90m"), "2026-11-22T10:30:00Z");
    EXPECT_EQ(parsed("-30d"), "2026-10-23T12:00:00Z");
}

TEST_F(HistoryTimes, OfAnHourThatComesTwiceAreThoseOfTheFirst) {
    EXPECT_EQ(parsed("2026-10-25 02:30"), "2026-10-25T00:30:00Z");
    EXPECT_EQ(parsed("2026-10-25 02:30+01:00"), "2026-10-25T01:30:00Z");
    EXPECT_EQ(parsed("2026-10-25 03:30"), "2026-10-25T02:30:00Z");
    EXPECT_EQ(parsed("2026-10-25 01:30"), "2026-10-24T23:30:00Z");
}

TEST_F(HistoryTimes, OfAnHourThatIsLeftOutLieBehindIt) {
    EXPECT_EQ(parsed("2026-03-29 02:30"), "2026-03-29T01:30:00Z");
}

TEST_F(HistoryTimes, AreNothingElse) {
    for (const char* const text : {"", "yesterday", "22.11.2026", "2026-13-01", "2026-02-30", "14:00", "-1",
                                   "-1w", "2026-11-22x14:00", "2026-11-22 25:00"})
        EXPECT_EQ(parsed(text), "none") << text;
}

TEST_F(HistoryTimes, AreWrittenWithTheirOffset) {
    EXPECT_EQ(isoTimeText(utc("2026-07-01T12:00:00Z") + 5, zone), "2026-07-01T14:00:00.005+02:00");
    EXPECT_EQ(isoTimeText(utc("2026-11-22T12:00:00Z"), zone), "2026-11-22T13:00:00.000+01:00");
    EXPECT_EQ(isoTimeText(utc("2026-11-22T12:00:00Z"), QTimeZone::utc()), "2026-11-22T12:00:00.000Z");
}

TEST_F(HistoryTimes, OfStretchesBeginAtRoundTimes) {
    EXPECT_THAT(stretches("2026-11-22T12:07:30Z", "2026-11-22T12:30:00Z", 10 * minute),
                ElementsAre("2026-11-22T13:00:00.000+01:00", "2026-11-22T13:10:00.000+01:00",
                            "2026-11-22T13:20:00.000+01:00", "2026-11-22T13:30:00.000+01:00"));
    EXPECT_THAT(stretches("2026-11-22T12:07:30Z", "2026-11-22T12:12:00Z", 10 * minute),
                ElementsAre("2026-11-22T13:00:00.000+01:00", "2026-11-22T13:10:00.000+01:00",
                            "2026-11-22T13:12:00.000+01:00"));
}

TEST_F(HistoryTimes, OfDaysAreMidnightsAlsoWhenTheClocksChange) {
    EXPECT_THAT(stretches("2026-10-24T10:00:00Z", "2026-10-26T10:00:00Z", 24 * hour),
                ElementsAre("2026-10-24T00:00:00.000+02:00", "2026-10-25T00:00:00.000+02:00",
                            "2026-10-26T00:00:00.000+01:00", "2026-10-26T11:00:00.000+01:00"));
}

TEST_F(HistoryTimes, OfTooManyStretchesAreNone) {
    EXPECT_THAT(stretches("2026-11-22T12:00:00Z", "2026-11-22T13:00:00Z", second), IsEmpty());
}
