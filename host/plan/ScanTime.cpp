#include "ScanTime.h"

#include "TelegramTime.h"

namespace host {

namespace {

// The driver's rest after each request is 10 ms; the link waits a little longer than the time-out, and an
// Ethernet line is opened anew behind each station that is silent.
constexpr std::chrono::milliseconds betweenStations{13};

} // namespace

std::string scanTimeoutFault(const ControllerLine& line) {
    const Site site = makeScanSite(line, {line.station});
    const Channel& channel = site.channels.front();
    const TelegramCost cost =
        costOf(channel, channel.rtus.front(), {scannedElement.media, scannedElement.number, 1});
    const std::optional<Obstacle> obstacle = obstacleTo(cost, line.end, line.timeout);
    return obstacle ? obstacle->what + "; leave this baud rate out, or give a longer --timeout" : "";
}

std::chrono::milliseconds silentScanTime(const ControllerLine& line, std::size_t stations) {
    std::chrono::milliseconds each = line.timeout + betweenStations;
    if (std::holds_alternative<SerialEnd>(line.end) && line.transmitType == TransmitType::Break)
        each += std::chrono::milliseconds(line.breakDelayMs);
    return each * stations;
}

} // namespace host
