#include "services/http/MetricsFormat.h"

#include <gtest/gtest.h>

using host::metricsFormatFor;

namespace {

constexpr auto plain = host::MetricsFormat::Prometheus;
constexpr auto openMetrics = host::MetricsFormat::OpenMetrics;

} // namespace

TEST(MetricsFormat, IsPlainUnlessOpenMetricsIsAskedFor) {
    EXPECT_EQ(metricsFormatFor(""), plain);
    EXPECT_EQ(metricsFormatFor("*/*"), plain);
    EXPECT_EQ(metricsFormatFor("text/html, text/plain;q=0.9"), plain);
    EXPECT_EQ(metricsFormatFor("application/openmetrics-text"), openMetrics);
    EXPECT_EQ(metricsFormatFor("application/openmetrics-text; version=1.0.0; charset=utf-8"), openMetrics);
}

TEST(MetricsFormat, IsWhatPrometheusLikesBest) {
    EXPECT_EQ(metricsFormatFor("application/openmetrics-text;version=1.0.0,application/openmetrics-text;"
                               "version=0.0.1;q=0.75,text/plain;version=0.0.4;q=0.5,*/*;q=0.1"),
              openMetrics);
    EXPECT_EQ(metricsFormatFor("text/plain;version=0.0.4;q=0.8,application/openmetrics-text;q=0.2"), plain);
}

TEST(MetricsFormat, IsPlainForVersionsThatAreNotWritten) {
    EXPECT_EQ(metricsFormatFor("application/openmetrics-text;version=0.0.1"), plain);
    EXPECT_EQ(metricsFormatFor("application/openmetrics-text;version=2.0.0, text/plain"), plain);
    EXPECT_EQ(metricsFormatFor("application/openmetrics-text;q=0"), plain);
}

TEST(MetricsFormat, SurvivesWhatIsNoHeader) {
    for (const char* const accept :
         {",", ";", "=", ",;=,;=", ";;;q", "application/openmetrics-text;q=", "text/plain;q=nan",
          "application/openmetrics-text;q=1e999", "application/openmetrics-text;q=-1", "  ,  ;  = "})
        EXPECT_EQ(metricsFormatFor(accept), plain) << accept;
    EXPECT_EQ(metricsFormatFor(std::string(100'000, ',')), plain);
    EXPECT_EQ(metricsFormatFor(std::string("\0,\0;\0", 5)), plain);
}
