#include "SiteMetrics.h"

#include <algorithm>

namespace host {

namespace {

constexpr double millisecondsInSecond = 1'000;

struct ChannelRow {
    MetricLabels labels;
    const ChannelStatus& figures;
};

struct RtuRow {
    MetricLabels labels;
    const RtuOutcome& figures;
};

// A sample of the family that was begun for each row.
template <typename Row, typename ValueOf>
void writeSamples(MetricsText& text, const std::vector<Row>& rows, ValueOf valueOf) {
    for (const Row& row : rows)
        text.sample(row.labels, valueOf(row.figures));
}

unsigned flag(bool isSet) {
    return isSet ? 1 : 0;
}

void writeHost(MetricsText& text, const SiteMetrics& metrics, const MetricLabels& site) {
    text.beginInfo("sbus_build", "The release that runs, and the commit that it was built from.");
    text.sample(site.with("version", metrics.version).with("commit", metrics.commit), 1);
    text.beginGauge("sbus_start_time_seconds", "When the site was started, in seconds since 1970.");
    text.sample(site, static_cast<double>(metrics.startedMs) / millisecondsInSecond);
    text.beginCounter("sbus_changes", "Changes of values and qualities.");
    text.sample(site, metrics.changes);
    text.beginGauge("sbus_log_lines_waiting", "Lines of the log that are not on the disk yet.");
    text.sample(site, metrics.log.queued);
    text.beginCounter("sbus_log_lines_lost", "Lines of the log that the disk refused or was too slow for.");
    text.sample(site, metrics.log.dropped);
}

void writeChannels(MetricsText& text, const std::vector<ChannelRow>& rows) {
    text.beginGauge("sbus_channel_connected", "Whether the line is open.");
    writeSamples(text, rows, [](const ChannelStatus& status) { return flag(status.connected); });
    text.beginGauge("sbus_channel_on_secondary", "Whether the line's secondary end is in use.");
    writeSamples(text, rows, [](const ChannelStatus& status) { return flag(status.whereLink != 0); });
    text.beginCounter("sbus_channel_failed_opens", "Tries to open the line that failed.");
    writeSamples(text, rows, [](const ChannelStatus& status) { return status.failedOpens; });
    text.beginCounter("sbus_channel_errors", "Failures of the line while it was open.");
    writeSamples(text, rows, [](const ChannelStatus& status) { return status.channelErrors; });
    text.beginCounter("sbus_channel_end_changes", "Changes between primary and secondary end.");
    writeSamples(text, rows, [](const ChannelStatus& status) { return status.linkChanges; });
    text.beginCounter("sbus_channel_scan_overruns",
                      "Polls left out because the line came to its schedule a whole period late.");
    writeSamples(text, rows, [](const ChannelStatus& status) { return status.scanOverruns; });
    text.beginCounter("sbus_channel_disconnected_seconds", "How long the line was not open, all in all.");
    writeSamples(text, rows, [](const ChannelStatus& status) {
        return static_cast<double>(status.failedMs) / millisecondsInSecond;
    });
}

void writeRequests(MetricsText& text, const std::vector<RtuRow>& rows) {
    text.beginGauge("sbus_rtu_connected", "Whether the controller answered its last request.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return flag(rtu.figures.status.connected); });
    text.beginCounter("sbus_rtu_requests", "Polls and commands that have ended.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.status.requests; });
    text.beginCounter("sbus_rtu_answers", "Polls and commands that were answered.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.status.answers; });
    text.beginCounter("sbus_rtu_errors", "Polls and commands that have failed, with all their tries.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) {
        return rtu.figures.status.timeOuts + rtu.figures.status.errors;
    });
    text.beginCounter("sbus_rtu_attempts", "Tries that polls and commands took.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.attempts; });
    text.beginCounter("sbus_rtu_timeouts", "Tries that found no answer in time.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.silences; });
    text.beginCounter("sbus_rtu_refused", "Tries that the controller refused.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.refusals; });
    text.beginCounter(
        "sbus_rtu_poll_overruns",
        "Polls left out because the one before of their kind had not begun when they were due.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.overruns; });
    text.beginHistogram("sbus_rtu_round_trip_seconds",
                        "From the start of a telegram to the last byte that came back to it.");
    writeSamples(text, rows, [](const RtuOutcome& rtu) { return rtu.figures.roundTrips; });
}

void writeQualities(MetricsText& text, const std::vector<RtuRow>& rows) {
    text.beginGauge("sbus_rtu_points", "Points by the quality of their values.");
    for (const RtuRow& row : rows) {
        text.sample(row.labels.with("quality", "good"), row.figures.goodPoints);
        text.sample(row.labels.with("quality", "bad"), row.figures.badPoints);
        text.sample(row.labels.with("quality", "refused"), row.figures.refusedPoints);
        text.sample(row.labels.with("quality", "never_read"), row.figures.neverReadPoints);
    }
}

void writeAges(MetricsText& text, const std::vector<RtuRow>& rows, qint64 nowMs) {
    text.beginGauge("sbus_rtu_oldest_value_age_seconds",
                    "For how long the value that was read longest ago has not been read again.");
    for (const RtuRow& row : rows)
        if (row.figures.oldestValueMs != 0) {
            const qint64 age = std::max<qint64>(0, nowMs - row.figures.oldestValueMs);
            text.sample(row.labels, static_cast<double>(age) / millisecondsInSecond);
        }
}

// "switched off" is "switched_off" here.
std::string labelOf(std::string figure) {
    std::replace(figure.begin(), figure.end(), ' ', '_');
    return figure;
}

bool isLoss(const ServiceFigure& figure) {
    return figure.name == "lost";
}

void writeServices(MetricsText& text, const std::vector<ServiceFigures>& services, const MetricLabels& site) {
    text.beginCounter("sbus_service_lost", "What a service lost because it or its other side was too slow.");
    for (const ServiceFigures& service : services)
        for (const ServiceFigure& figure : service.figures)
            if (isLoss(figure))
                text.sample(site.with("service", service.name), figure.value);
    text.beginGauge("sbus_service_figure", "What else a service tells of itself.");
    for (const ServiceFigures& service : services)
        for (const ServiceFigure& figure : service.figures)
            if (!isLoss(figure))
                text.sample(site.with("service", service.name).with("figure", labelOf(figure.name)),
                            figure.value);
}

} // namespace

RtuLabels::RtuLabels(const std::string& siteName, const std::vector<const Channel*>& channelsOfSite)
    : site(MetricLabels().with("site", siteName)) {
    std::map<std::string, unsigned> namesakes;
    for (const Channel* const channel : channelsOfSite)
        ++namesakes[channel->name];
    for (const Channel* const channel : channelsOfSite) {
        const bool isAlone = namesakes[channel->name] == 1;
        lines.emplace(channel,
                      site.with("channel",
                                isAlone ? channel->name : channel->name + ' ' + std::to_string(channel->id)));
    }
}

void writeSiteMetrics(MetricsText& text, const SiteMetrics& metrics) {
    std::vector<const Channel*> configured;
    for (const ChannelFigures& one : metrics.channels)
        configured.push_back(one.channel);
    const RtuLabels labels(metrics.site, configured);
    std::vector<ChannelRow> channels;
    for (const ChannelFigures& one : metrics.channels)
        channels.push_back({labels.of(*one.channel), one.status});
    std::vector<RtuRow> rtus;
    for (const RtuOutcome& one : metrics.rtus)
        rtus.push_back({labels.of(*one.figures.channel, *one.figures.rtu), one});
    writeHost(text, metrics, labels.ofSite());
    writeChannels(text, channels);
    writeRequests(text, rtus);
    writeQualities(text, rtus);
    writeAges(text, rtus, metrics.nowMs);
    writeServices(text, metrics.services, labels.ofSite());
}

} // namespace host
