#include "services/history/RecordedSpans.h"

#include "site/NumberText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::RecordedRow;
using host::RecordedRun;
using host::RecordedSpan;
using testing::ElementsAre;

namespace {

RecordedRow good(std::int64_t timeMs, double value) {
    return {timeMs, PointQuality::Good, value};
}

RecordedRow bad(std::int64_t timeMs) {
    return {timeMs, PointQuality::Bad, {}};
}

// "100..200 5", "200..300 bad", "300..400 nothing", from 100 to 1000.
std::vector<std::string> spans(const std::vector<RecordedRun>& runs, const std::vector<RecordedRow>& rows) {
    std::vector<std::string> texts;
    host::SpanMaker maker(runs, 100, 1'000, [&texts](const RecordedSpan& span) {
        texts.push_back(std::to_string(span.beginMs) + ".." + std::to_string(span.endMs) + ' ' +
                        (span.value     ? host::numberText(*span.value)
                         : span.quality ? "bad"
                                        : "nothing"));
    });
    for (const RecordedRow& row : rows)
        maker.add(row);
    maker.finish();
    return texts;
}

} // namespace

TEST(RecordedSpans, LastUntilTheNextRow) {
    EXPECT_THAT(spans({{0, 2'000}}, {good(100, 5), bad(300), good(400, 6)}),
                ElementsAre("100..300 5", "300..400 bad", "400..1000 6"));
}

TEST(RecordedSpans, BeginWithTheValueFromBefore) {
    EXPECT_THAT(spans({{0, 2'000}}, {good(20, 5), good(300, 6)}), ElementsAre("100..300 5", "300..1000 6"));
}

TEST(RecordedSpans, EndWithTheirRun) {
    EXPECT_THAT(spans({{0, 400}, {600, 2'000}}, {good(200, 5), good(700, 6)}),
                ElementsAre("100..200 nothing", "200..400 5", "400..700 nothing", "700..1000 6"));
}

TEST(RecordedSpans, OfARunThatWasOverBeforeAreNone) {
    EXPECT_THAT(spans({{600, 2'000}}, {good(20, 5), good(700, 6)}),
                ElementsAre("100..700 nothing", "700..1000 6"));
    EXPECT_THAT(spans({}, {}), ElementsAre("100..1000 nothing"));
}

// The last change before a host was killed.
TEST(RecordedSpans, OfTheLastRowOfARunHaveNoLength) {
    EXPECT_THAT(spans({{0, 400}}, {good(200, 5), good(400, 6)}),
                ElementsAre("100..200 nothing", "200..400 5", "400..400 6", "400..1000 nothing"));
}

TEST(RecordedSpans, TellTheLastOfSeveralRowsOfOneTime) {
    EXPECT_THAT(spans({{0, 2'000}}, {good(100, 5), good(300, 6), good(300, 7)}),
                ElementsAre("100..300 5", "300..1000 7"));
}

TEST(RecordedSpans, TellSinceWhenAValueStands) {
    std::vector<std::int64_t> since;
    host::SpanMaker maker({{0, 2'000}}, 100, 1'000,
                          [&since](const RecordedSpan& span) { since.push_back(span.sinceMs); });
    maker.add(good(20, 5));
    maker.add(good(300, 6));
    maker.finish();
    EXPECT_THAT(since, ElementsAre(20, 300));
}
