#include "services/history/HistoryText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::AggregatedValue;
using host::HistoryPoint;
using host::RecordedSpan;

namespace {

const QTimeZone utc = QTimeZone::utc();
const HistoryPoint level{"pump-house/LEVEL", "m", 2, false};
const HistoryPoint plain{"tank, north/COUNT", "", {}, false};
const RecordedSpan good{1'000, 2'000, 500, PointQuality::Good, 1.234};
const RecordedSpan refused{1'000, 2'000, 1'000, PointQuality::Refused, {}};
const RecordedSpan nothing{1'000, 2'000, 1'000, {}, {}};

AggregatedValue aggregated(std::int64_t goodMs, std::optional<double> value) {
    return {0, 60'000, goodMs, PointQuality::Bad, value};
}

} // namespace

TEST(HistoryText, IsRowsOfChanges) {
    const auto csv = host::makeHistoryCsv(utc);
    EXPECT_EQ(csv->header(false), "time,point,value,unit,quality\n");
    EXPECT_EQ(csv->line(level, good), "1970-01-01T00:00:00.500Z,pump-house/LEVEL,1.23,m,good\n");
    EXPECT_EQ(csv->line(level, refused), "1970-01-01T00:00:01.000Z,pump-house/LEVEL,,m,refused\n");
    EXPECT_EQ(csv->line(plain, nothing), "1970-01-01T00:00:01.000Z,\"tank, north/COUNT\",,,not recorded\n");
}

TEST(HistoryText, IsRowsOfAggregatedValues) {
    const auto csv = host::makeHistoryCsv(utc);
    EXPECT_EQ(csv->header(true), "time,point,value,unit,quality,good_share\n");
    EXPECT_EQ(csv->line(level, aggregated(60'000, 2)),
              "1970-01-01T00:00:00.000Z,pump-house/LEVEL,2.00,m,good,1\n");
    EXPECT_EQ(csv->line(level, aggregated(45'000, 2)),
              "1970-01-01T00:00:00.000Z,pump-house/LEVEL,2.00,m,partly good,0.75\n");
    EXPECT_EQ(csv->line(level, aggregated(0, {})), "1970-01-01T00:00:00.000Z,pump-house/LEVEL,,m,bad,0\n");
}

TEST(HistoryText, IsObjects) {
    const auto json = host::makeHistoryJson(utc);
    EXPECT_EQ(json->header(true), "");
    EXPECT_EQ(json->line(level, good),
              "{\"time\":\"1970-01-01T00:00:00.500Z\",\"point\":\"pump-house/LEVEL\","
              "\"value\":1.23,\"unit\":\"m\",\"quality\":\"good\"}\n");
    EXPECT_EQ(json->line(plain, refused),
              "{\"time\":\"1970-01-01T00:00:01.000Z\",\"point\":\"tank, north/COUNT\",\"value\":null,"
              "\"quality\":\"refused\"}\n");
    EXPECT_EQ(json->line(plain, aggregated(20'000, 1. / 3)),
              "{\"time\":\"1970-01-01T00:00:00.000Z\",\"point\":\"tank, north/COUNT\",\"value\":0.333333333,"
              "\"quality\":\"partly good\",\"good_share\":0.3333}\n");
}
