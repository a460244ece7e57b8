#include "services/history/Aggregation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::Aggregate;
using host::AggregatedValue;
using host::Aggregation;
using host::RecordedSpan;

namespace {

RecordedSpan good(std::int64_t beginMs, std::int64_t endMs, double value) {
    return {beginMs, endMs, beginMs, PointQuality::Good, value};
}

RecordedSpan bad(std::int64_t beginMs, std::int64_t endMs) {
    return {beginMs, endMs, beginMs, PointQuality::Bad, {}};
}

RecordedSpan nothing(std::int64_t beginMs, std::int64_t endMs) {
    return {beginMs, endMs, beginMs, {}, {}};
}

// Of the stretches 0..100 and 100..200.
std::vector<AggregatedValue> aggregated(Aggregate aggregate, const std::vector<RecordedSpan>& spans) {
    Aggregation aggregation(aggregate, {0, 100, 200});
    for (const RecordedSpan& span : spans)
        aggregation.add(span);
    return aggregation.values();
}

} // namespace

// A mean of the changes alone would be 5.
TEST(Aggregation, WeightsTheMeanByTime) {
    const auto values = aggregated(Aggregate::Mean, {good(0, 90, 10), good(90, 150, 0), good(150, 200, 4)});
    ASSERT_EQ(values.size(), 2U);
    EXPECT_DOUBLE_EQ(values[0].value.value(), 9);
    EXPECT_DOUBLE_EQ(values[1].value.value(), 2);
    EXPECT_EQ(values[1].beginMs, 100);
    EXPECT_EQ(values[1].endMs, 200);
}

TEST(Aggregation, LeavesOutTheTimeInWhichAPointWasNotGood) {
    const auto values = aggregated(
        Aggregate::Mean, {good(0, 20, 10), bad(20, 80), good(80, 100, 20), bad(100, 150), nothing(150, 200)});
    EXPECT_DOUBLE_EQ(values[0].value.value(), 15);
    EXPECT_EQ(values[0].goodMs, 40);
    EXPECT_DOUBLE_EQ(values[0].goodShare(), 0.4);
    EXPECT_FALSE(values[1].value);
    EXPECT_EQ(values[1].goodMs, 0);
    EXPECT_EQ(values[1].otherQuality, PointQuality::Bad);
}

TEST(Aggregation, TellsWhenNothingWasRecorded) {
    const auto values = aggregated(Aggregate::Mean, {nothing(0, 200)});
    EXPECT_FALSE(values[0].value);
    EXPECT_FALSE(values[0].otherQuality);
}

TEST(Aggregation, OfAConstantValueIsExactlyThatValue) {
    std::vector<RecordedSpan> spans;
    for (std::int64_t i = 0; i < 100; i += 3)
        spans.push_back(good(i, std::min<std::int64_t>(i + 3, 100), 0.1));
    EXPECT_EQ(aggregated(Aggregate::Mean, spans)[0].value, 0.1);
}

TEST(Aggregation, TellsExtremesAndTheLastValueAlsoOfAValueFromBefore) {
    const std::vector<RecordedSpan> spans{good(0, 40, 3), good(40, 50, -7), good(50, 110, 5),
                                          good(110, 200, 1)};
    const auto expectValues = [&](Aggregate aggregate, double first, double second) {
        const auto values = aggregated(aggregate, spans);
        EXPECT_EQ(values[0].value, first);
        EXPECT_EQ(values[1].value, second);
    };
    expectValues(Aggregate::Min, -7, 1);
    expectValues(Aggregate::Max, 5, 5);
    expectValues(Aggregate::Last, 5, 1);
}

TEST(Aggregation, CountsNoValueThatStoodForNoTime) {
    EXPECT_EQ(aggregated(Aggregate::Max, {good(0, 50, 1), good(50, 50, 9), nothing(50, 200)})[0].value, 1);
}
