#include "CommandTimeLimit.h"

#include "Forecast.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

using std::chrono::milliseconds;

// A serial line is drained for up to 5 s after a wrong checksum, a line that takes no more bytes is given up
// after 5 s, and to open a line anew may take as long again.
constexpr milliseconds disturbedLine{15'000};

constexpr std::size_t releaseTelegrams = 2; // of a pulse, which travels like a poll

milliseconds longestRequest(const RtuForecast& forecast) {
    const std::size_t telegrams = std::max(forecast.integrity.telegrams, releaseTelegrams);
    return forecast.rtu->timeout * telegrams +
           milliseconds(static_cast<long long>(std::ceil(forecast.integrity.milliseconds)));
}

} // namespace

milliseconds commandTimeLimit(const Channel& channel) {
    milliseconds before{0};
    milliseconds own{0};
    for (const RtuForecast& forecast : forecastLine(channel).rtus) {
        before = std::max(before, longestRequest(forecast));
        own = std::max(own, forecast.rtu->timeout);
    }
    return before + own + disturbedLine;
}

} // namespace host
