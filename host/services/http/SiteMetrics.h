#pragma once

#include "MetricsText.h"
#include "runtime/RtuOutcome.h"
#include "services/ServiceFigures.h"

#include <HalvexDriverComponent/CLogger.h>

#include <map>
#include <string>
#include <vector>

namespace host {

// What is known of a running site at one moment.
struct SiteMetrics {
    std::string site; // its name
    std::string version;
    std::string commit;
    qint64 startedMs = 0; // since 1970
    qint64 nowMs = 0;
    std::vector<ChannelFigures> channels;
    std::vector<RtuOutcome> rtus;
    std::vector<ServiceFigures> services;
    LoggerFigures log;
    std::uint64_t changes = 0; // of values and qualities
};

// Writes all of it but the points. Pure.
void writeSiteMetrics(MetricsText& text, const SiteMetrics& metrics);

// The labels of what is an RTU's. A line that shares its name with another one has its id behind it.
class RtuLabels {
public:
    RtuLabels(const std::string& siteName, const std::vector<const Channel*>& channelsOfSite);

    const MetricLabels& ofSite() const { return site; }
    // Of one of those channels.
    const MetricLabels& of(const Channel& channel) const { return lines.at(&channel); }
    MetricLabels of(const Channel& channel, const Rtu& rtu) const {
        return of(channel).with("rtu", rtu.name);
    }

private:
    const MetricLabels site;
    std::map<const Channel*, MetricLabels> lines;
};

} // namespace host
