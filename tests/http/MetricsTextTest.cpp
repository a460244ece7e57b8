#include "services/http/MetricsText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using host::MetricLabels;
using host::MetricsFormat;
using host::MetricsText;
using testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

const MetricLabels pump = MetricLabels().with("site", "north").with("rtu", "pump-house");

// What a text holds of which each line is told to be written.
template <typename Write>
std::string written(MetricsFormat format, Write write) {
    MetricsText text(format);
    write(text);
    return text.finish();
}

} // namespace

TEST(MetricLabels, AreEscaped) {
    EXPECT_EQ(MetricLabels().with("a", "plain").with("b", "").text(), "a=\"plain\",b=\"\"");
    EXPECT_EQ(MetricLabels().with("point", "say \"on\"").text(), "point=\"say \\\"on\\\"\"");
    EXPECT_EQ(MetricLabels().with("point", "a\\b\nc").text(), "point=\"a\\\\b\\nc\"");
    EXPECT_EQ(MetricLabels().with("unit", "m³/h").text(), "unit=\"m³/h\"");
}

TEST(MetricsText, EndsACounterInTotal) {
    const auto write = [](MetricsText& text) {
        text.beginCounter("sbus_rtu_requests", "Polls.");
        text.sample(pump, std::uint64_t{18'446'744'073'709'551'615U});
    };
    EXPECT_EQ(written(MetricsFormat::Prometheus, write),
              "# HELP sbus_rtu_requests_total Polls.\n# TYPE sbus_rtu_requests_total counter\n"
              "sbus_rtu_requests_total{site=\"north\",rtu=\"pump-house\"} 18446744073709551615\n");
    EXPECT_EQ(written(MetricsFormat::OpenMetrics, write),
              "# HELP sbus_rtu_requests Polls.\n# TYPE sbus_rtu_requests counter\n"
              "sbus_rtu_requests_total{site=\"north\",rtu=\"pump-house\"} 18446744073709551615\n# EOF\n");
}

TEST(MetricsText, WritesWhatIsKnownOnceAndForAllAsInfo) {
    const auto write = [](MetricsText& text) {
        text.beginInfo("sbus_build", "The release.");
        text.sample(MetricLabels().with("version", "0.2.0"), 1);
    };
    EXPECT_EQ(written(MetricsFormat::Prometheus, write),
              "# HELP sbus_build_info The release.\n# TYPE sbus_build_info gauge\n"
              "sbus_build_info{version=\"0.2.0\"} 1\n");
    EXPECT_EQ(written(MetricsFormat::OpenMetrics, write),
              "# HELP sbus_build The release.\n# TYPE sbus_build info\n"
              "sbus_build_info{version=\"0.2.0\"} 1\n# EOF\n");
}

TEST(MetricsText, WritesNumbersSoThatNothingOfThemIsLost) {
    const std::string text = written(MetricsFormat::Prometheus, [](MetricsText& into) {
        into.beginGauge("sbus_value", "Values.");
        into.sample({}, 0.1);
        into.sample({}, -15.85);
        into.sample({}, 1e300);
        into.sample({}, std::numeric_limits<double>::quiet_NaN());
        into.sample({}, -std::numeric_limits<double>::infinity());
    });
    EXPECT_THAT(text, HasSubstr("sbus_value 0.1\nsbus_value -15.85\nsbus_value 1e+300\nsbus_value NaN\n"
                                "sbus_value -Inf\n"));
}

TEST(MetricsText, CountsTheStepsOfAHistogramUp) {
    host::RoundTripHistogram trips;
    trips.add(400us);
    trips.add(3ms);
    trips.add(3ms);
    trips.add(7s);
    const std::string text = written(MetricsFormat::Prometheus, [&trips](MetricsText& into) {
        into.beginHistogram("sbus_rtu_round_trip_seconds", "Round trips.");
        into.sample(pump, trips);
    });
    const std::string labels = "{site=\"north\",rtu=\"pump-house\"";
    EXPECT_THAT(text, HasSubstr("# TYPE sbus_rtu_round_trip_seconds histogram\n"));
    for (const char* const line :
         {",le=\"0.0005\"} 1\n", ",le=\"0.001\"} 1\n", ",le=\"0.002\"} 1\n", ",le=\"0.005\"} 3\n",
          ",le=\"1.0\"} 3\n", ",le=\"5.0\"} 3\n", ",le=\"+Inf\"} 4\n"})
        EXPECT_THAT(text, HasSubstr("sbus_rtu_round_trip_seconds_bucket" + labels + line));
    EXPECT_THAT(text, HasSubstr("sbus_rtu_round_trip_seconds_sum" + labels +
                                "} 7.0064\n"
                                "sbus_rtu_round_trip_seconds_count" +
                                labels + "} 4\n"));
}

TEST(MetricsText, LeavesOutAFamilyWithoutASample) {
    const std::string text = written(MetricsFormat::OpenMetrics, [](MetricsText& into) {
        into.beginGauge("sbus_first", "First.");
        into.beginGauge("sbus_second", "Second.");
        into.sample({}, 2);
    });
    EXPECT_EQ(text, "# HELP sbus_second Second.\n# TYPE sbus_second gauge\nsbus_second 2\n# EOF\n");
}
