#include "services/http/SiteMetrics.h"

#include "services/http/PointMetrics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::MetricsFormat;
using host::MetricsText;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

// A line "waterworks" with the RTU "pump-house", and of it the status point RUN (O32) and the analog points
// LEVEL (R10, a hundredth of a metre) and FLOW (R11).
class SiteMetrics : public testing::Test {
protected:
    SiteMetrics() {
        site.name = "north";
        host::Channel& channel = site.channels.emplace_back();
        channel.id = 4;
        channel.name = "waterworks";
        host::Rtu& rtu = channel.rtus.emplace_back();
        rtu.id = 7;
        rtu.name = "pump-house";
        rtu.points = {point("RUN", host::PointKind::Status, {'O', 32}),
                      point("LEVEL", host::PointKind::Analog, {'R', 10}),
                      point("FLOW", host::PointKind::Analog, {'R', 11})};
        auto metres = std::make_shared<host::Engineering>();
        metres->scaling = host::Scaling(0.01, 0);
        metres->unit = "m";
        rtu.points[1].engineering = metres;
    }

    static host::Point point(const char* name, host::PointKind kind, host::ElementAddress address) {
        host::Point made;
        made.name = name;
        made.kind = kind;
        made.address = address;
        return made;
    }

    host::Channel& channel() { return site.channels.front(); }

    host::SiteMetrics figures() {
        host::SiteMetrics metrics;
        metrics.site = site.name;
        for (const host::Channel& one : site.channels) {
            metrics.channels.push_back({&one, {}, {}});
            for (const host::Rtu& rtu : one.rtus) {
                metrics.rtus.emplace_back();
                metrics.rtus.back().figures.channel = &one;
                metrics.rtus.back().figures.rtu = &rtu;
            }
        }
        return metrics;
    }

    static std::string textOf(const host::SiteMetrics& metrics) {
        MetricsText text(MetricsFormat::Prometheus);
        writeSiteMetrics(text, metrics);
        return text.finish();
    }

    std::string pointsOf(const host::ValueStore& values) const {
        MetricsText text(MetricsFormat::Prometheus);
        writePointMetrics(text, site, values, [] { return false; });
        return text.finish();
    }

    static PointUpdate reading(unsigned number, double value, PointQuality quality = PointQuality::Good) {
        PointUpdate update;
        update.number = number;
        update.value = value;
        update.quality = quality;
        return update;
    }

    host::Site site;
};

const std::string rtuLabels = "{site=\"north\",channel=\"waterworks\",rtu=\"pump-house\"";

} // namespace

TEST_F(SiteMetrics, TellHowRequestsEnded) {
    host::SiteMetrics metrics = figures();
    host::RtuFigures& rtu = metrics.rtus[0].figures;
    rtu.status.connected = true;
    rtu.status.requests = 12;
    rtu.status.answers = 9;
    rtu.status.timeOuts = 2;
    rtu.status.errors = 1;
    rtu.attempts = 17;
    rtu.silences = 5;
    rtu.refusals = 3;
    rtu.overruns = 4;
    rtu.roundTrips.add(std::chrono::milliseconds(3));
    const std::string text = textOf(metrics);
    for (const char* const line :
         {"connected", "requests_total", "answers_total", "timeouts_total", "errors_total", "attempts_total",
          "refused_total", "poll_overruns_total", "round_trip_seconds_count"})
        EXPECT_THAT(text, HasSubstr("\nsbus_rtu_" + std::string(line) + rtuLabels + "} "));
    EXPECT_THAT(text, AllOf(HasSubstr("requests_total" + rtuLabels + "} 12\n"),
                            HasSubstr("answers_total" + rtuLabels + "} 9\n"),
                            HasSubstr("timeouts_total" + rtuLabels + "} 5\n"),
                            HasSubstr("errors_total" + rtuLabels + "} 3\n"),
                            HasSubstr("attempts_total" + rtuLabels + "} 17\n"),
                            HasSubstr("refused_total" + rtuLabels + "} 3\n"),
                            HasSubstr("poll_overruns_total" + rtuLabels + "} 4\n"),
                            HasSubstr("round_trip_seconds_sum" + rtuLabels + "} 0.003\n")));
}

TEST_F(SiteMetrics, TellHowALineStands) {
    host::SiteMetrics metrics = figures();
    ChannelStatus& status = metrics.channels[0].status;
    status.connected = true;
    status.whereLink = 1;
    status.failedOpens = 5;
    status.channelErrors = 6;
    status.linkChanges = 7;
    status.scanOverruns = 8;
    status.failedMs = 1'250;
    const std::string labels = "{site=\"north\",channel=\"waterworks\"} ";
    EXPECT_THAT(textOf(metrics),
                AllOf(HasSubstr("sbus_channel_connected" + labels + "1\n"),
                      HasSubstr("sbus_channel_on_secondary" + labels + "1\n"),
                      HasSubstr("sbus_channel_failed_opens_total" + labels + "5\n"),
                      HasSubstr("sbus_channel_errors_total" + labels + "6\n"),
                      HasSubstr("sbus_channel_end_changes_total" + labels + "7\n"),
                      HasSubstr("sbus_channel_scan_overruns_total" + labels + "8\n"),
                      HasSubstr("sbus_channel_disconnected_seconds_total" + labels + "1.25\n")));
}

TEST_F(SiteMetrics, TellPointsByQualityAndTheAgeOfTheOldestValue) {
    host::SiteMetrics metrics = figures();
    metrics.nowMs = 100'000;
    metrics.rtus[0].goodPoints = 1;
    metrics.rtus[0].badPoints = 2;
    metrics.rtus[0].refusedPoints = 3;
    metrics.rtus[0].neverReadPoints = 4;
    EXPECT_THAT(textOf(metrics), Not(HasSubstr("sbus_rtu_oldest_value_age_seconds"))) << "nothing was read";
    metrics.rtus[0].oldestValueMs = 97'500;
    EXPECT_THAT(textOf(metrics),
                AllOf(HasSubstr("sbus_rtu_points" + rtuLabels + ",quality=\"good\"} 1\n"),
                      HasSubstr("sbus_rtu_points" + rtuLabels + ",quality=\"bad\"} 2\n"),
                      HasSubstr("sbus_rtu_points" + rtuLabels + ",quality=\"refused\"} 3\n"),
                      HasSubstr("sbus_rtu_points" + rtuLabels + ",quality=\"never_read\"} 4\n"),
                      HasSubstr("sbus_rtu_oldest_value_age_seconds" + rtuLabels + "} 2.5\n")));
    metrics.nowMs = 90'000; // the clock was set back
    EXPECT_THAT(textOf(metrics), HasSubstr("sbus_rtu_oldest_value_age_seconds" + rtuLabels + "} 0\n"));
}

TEST_F(SiteMetrics, TellLossesOfServicesApartFromTheirOtherFigures) {
    host::SiteMetrics metrics = figures();
    metrics.services = {{"capture", {{"frames", 10}, {"lost", 2}}}, {"pulses", {{"switched off", 3}}}};
    EXPECT_THAT(
        textOf(metrics),
        AllOf(HasSubstr("sbus_service_lost_total{site=\"north\",service=\"capture\"} 2\n"),
              HasSubstr("sbus_service_figure{site=\"north\",service=\"capture\",figure=\"frames\"} 10\n"),
              HasSubstr("sbus_service_figure{site=\"north\",service=\"pulses\",figure=\"switched_off\"} "
                        "3\n"),
              Not(HasSubstr("figure=\"lost\""))));
}

TEST_F(SiteMetrics, KeepLinesOfOneNameApart) {
    site.channels.push_back(channel());
    site.channels[1].id = 5;
    EXPECT_THAT(textOf(figures()),
                AllOf(HasSubstr("sbus_channel_connected{site=\"north\",channel=\"waterworks 4\"}"),
                      HasSubstr("sbus_channel_connected{site=\"north\",channel=\"waterworks 5\"}")));
}

TEST_F(SiteMetrics, TellWhatRuns) {
    host::SiteMetrics metrics = figures();
    metrics.version = "0.2.0";
    metrics.commit = "commit 1a2b3c";
    metrics.startedMs = 1'700'000'000'500;
    metrics.changes = 77;
    EXPECT_THAT(
        textOf(metrics),
        AllOf(HasSubstr("sbus_build_info{site=\"north\",version=\"0.2.0\",commit=\"commit 1a2b3c\"} 1\n"),
              HasSubstr("sbus_start_time_seconds{site=\"north\"} 1700000000.5\n"),
              HasSubstr("sbus_changes_total{site=\"north\"} 77\n")));
}

TEST_F(SiteMetrics, GiveAPointsValueInItsUnit) {
    host::ValueStore values(site);
    values.publishPoints(4, 7, {reading(0, 1), reading(1, 415), reading(2, -7)});
    const std::string text = pointsOf(values);
    EXPECT_THAT(text, AllOf(HasSubstr("sbus_point_value" + rtuLabels + ",point=\"RUN\"} 1\n"),
                            HasSubstr("sbus_point_value" + rtuLabels + ",point=\"LEVEL\",unit=\"m\"} 4.15\n"),
                            HasSubstr("sbus_point_value" + rtuLabels + ",point=\"FLOW\"} -7\n"),
                            HasSubstr("sbus_point_good" + rtuLabels + ",point=\"FLOW\"} 1\n")));
}

TEST_F(SiteMetrics, GiveNoValueThatIsNotGood) {
    host::ValueStore values(site);
    values.publishPoints(4, 7, {reading(1, 415), reading(2, -7)});
    values.publishPoints(4, 7, {reading(1, 415, PointQuality::Bad), reading(2, -7, PointQuality::Refused)});
    const std::string text = pointsOf(values);
    EXPECT_THAT(text, Not(HasSubstr("sbus_point_value")));
    for (const char* const name : {"RUN", "LEVEL", "FLOW"})
        EXPECT_THAT(text, HasSubstr("sbus_point_good" + rtuLabels + ",point=\"" + name + "\"} 0\n"));
}

TEST_F(SiteMetrics, LeaveOutPointsThatNobodyReads) {
    channel().rtus[0].points[0].isPolled = false;
    const host::ValueStore values(site);
    EXPECT_THAT(pointsOf(values), AllOf(Not(HasSubstr("RUN")), HasSubstr("LEVEL")));
}
