#pragma once

#include "ReadPlan.h"

namespace host {

// What a poll costs: requests and answers, both directions.
struct PollForecast {
    std::size_t telegrams = 0; // requests; each is answered by one
    std::size_t bytes = 0;     // on the serial line, or in the datagrams
    double milliseconds = 0;   // on the serial line; an Ethernet line has only the driver's pause here
    double answersMs = 0;      // for which the answers are expected to be on their way beside

    double total() const { return milliseconds + answersMs; }
};

struct RtuForecast {
    const Rtu* rtu = nullptr;
    RtuReadPlan plan;
    PollForecast integrity;
    PollForecast status;
    PollForecast analog;
    double share = 0; // of the line's time, 1 being all of it
};

struct LineForecast {
    const Channel* channel = nullptr;
    std::vector<RtuForecast> rtus; // the enabled ones
    double share = 0;
};

// The site must outlive the forecast.
LineForecast forecastLine(const Channel& channel);

// What is told of a good site: where hidden points were added, which addresses were rewritten, and the
// forecast of each line.
std::string describeSite(const Site& site);

} // namespace host
