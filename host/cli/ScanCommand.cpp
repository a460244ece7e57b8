#include "oneshot/Commands.h"
#include "oneshot/OneShotCapture.h"
#include "oneshot/ScanText.h"
#include "oneshot/ScannedSite.h"
#include "oneshot/StationScanner.h"
#include "plan/ScanTime.h"
#include "services/console/ProgressBar.h"
#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace host {

namespace {

// The whole scan: one line in each of its ways.
class Scan {
public:
    explicit Scan(const ScanOptions& scanOptions) : options(scanOptions), capture(options.capture) {}

    ExitStatus run();

private:
    std::string startFault();
    void announce() const;
    bool scanWay(const ControllerLine& way);
    LineScan ask(const ControllerLine& way, const std::vector<unsigned>& stations,
                 const StationScanner::Progress& progress);
    void confirm(LineScan& scan);
    void tell(const LineScan& scan) const;
    std::size_t presentCount() const;
    bool writeSite() const;

    const ScanOptions& options;
    OneShotCapture capture;
    std::vector<LineScan> scans;
    std::string fault; // why the plug-in does not run
};

std::string durationText(std::chrono::milliseconds duration) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(duration).count();
    return seconds < 120 ? std::to_string(seconds) + " s" : std::to_string((seconds + 59) / 60) + " min";
}

// Without the settings, which differ from way to way.
std::string deviceText(const LinkEnd& end) {
    const SerialEnd* const serial = std::get_if<SerialEnd>(&end);
    return serial == nullptr ? toText(end) : "serial:" + serial->device;
}

// Empty, or why the scan cannot begin: better told before it has taken its time.
std::string Scan::startFault() {
    for (const ControllerLine& way : options.ways)
        if (const std::string timeoutFault = scanTimeoutFault(way); !timeoutFault.empty())
            return toText(way.end) + ": " + timeoutFault;
    std::error_code ignored;
    if (!options.sitePath.empty() && !options.overwrites &&
        std::filesystem::exists(std::filesystem::u8path(options.sitePath), ignored))
        return options.sitePath + " is there already; name another file, or overwrite it with --force";
    return capture.start();
}

void Scan::announce() const {
    std::chrono::milliseconds longest{0};
    for (const ControllerLine& way : options.ways)
        longest += silentScanTime(way, options.stations.size());
    const std::size_t count = options.stations.size();
    std::string text = "asking " + std::to_string(count) + (count == 1 ? " station of " : " stations of ");
    text += options.ways.size() == 1
                ? wayText(options.ways.front())
                : deviceText(options.ways.front().end) + " in " + std::to_string(options.ways.size()) +
                      " ways (baud rates and transmit types)";
    tellError(text + "; takes " + durationText(longest) + " if none answers");
}

LineScan Scan::ask(const ControllerLine& way, const std::vector<unsigned>& stations,
                   const StationScanner::Progress& progress) {
    StationScanner scanner(way, stations);
    const auto captured = capture.follow(scanner.exchanges());
    fault = scanner.open(options.pluginPath);
    return fault.empty() ? scanner.scan(progress) : LineScan();
}

// Asks those again that something came from.
void Scan::confirm(LineScan& scan) {
    std::vector<unsigned> heard;
    for (const ScanReply& reply : scan.replies)
        if (reply.kind != ScanReply::Kind::Silent)
            heard.push_back(reply.station);
    if (heard.empty())
        return;
    const LineScan again = ask(scan.line, heard, [](std::size_t) {});
    scan.lineFault = again.lineFault;
    scan.isInterrupted = again.isInterrupted;
    for (const ScanReply& second : again.replies)
        for (ScanReply& first : scan.replies)
            if (first.station == second.station)
                first = joined(first, second);
}

// False when the scan is not to go on.
bool Scan::scanWay(const ControllerLine& way) {
    LineScan scan;
    {
        ProgressBar bar;
        const std::size_t before = scans.size() * options.stations.size();
        const std::size_t all = options.ways.size() * options.stations.size();
        scan = ask(way, options.stations, [&](std::size_t asked) { bar.show(before + asked, all); });
    }
    if (!fault.empty())
        return false;
    if (!scan.isInterrupted && scan.lineFault.empty())
        confirm(scan);
    tell(scan);
    scans.push_back(scan);
    return !scan.isInterrupted && scan.lineFault.empty() && std::cout.good();
}

void Scan::tell(const LineScan& scan) const {
    for (const ScanReply& reply : scan.replies)
        if (reply.kind != ScanReply::Kind::Silent)
            std::cout << (options.asJson ? replyAsJson(scan.line, reply) : replyAsText(scan.line, reply))
                      << '\n';
    std::cout << std::flush;
    if (!scan.lineFault.empty())
        tellError(scan.lineFault);
    if (!scan.isInterrupted)
        return;
    const bool hasHeard = std::any_of(scan.replies.begin(), scan.replies.end(), [](const ScanReply& reply) {
        return reply.kind != ScanReply::Kind::Silent;
    });
    tellError("interrupted: " + std::to_string(scan.replies.size()) + " of " +
              std::to_string(options.stations.size()) + " stations were asked" +
              (hasHeard ? ", and not all that replied were asked again" : ""));
}

std::size_t Scan::presentCount() const {
    std::size_t count = 0;
    for (const LineScan& scan : scans)
        count += countPresent(scan);
    return count;
}

bool Scan::writeSite() const {
    std::ofstream file(std::filesystem::u8path(options.sitePath), std::ios::binary);
    file << siteTextOf(scans, options.sitePath) << std::flush;
    if (!file.good()) {
        tellError(options.sitePath + " cannot be written; name a file in a directory that may be written");
        return false;
    }
    tellError("wrote " + options.sitePath + "; its first lines tell what to do next");
    return true;
}

ExitStatus Scan::run() {
    fault = startFault();
    if (fault.empty()) {
        announce();
        for (const ControllerLine& way : options.ways)
            if (!scanWay(way))
                break;
    }
    if (!fault.empty()) {
        tellError(fault);
        return ExitStatus::Configuration;
    }
    if (presentCount() == 0) {
        if (scans.back().lineFault.empty() && !scans.back().isInterrupted)
            tellError(nobodyText(options.ways.front(), options.stations.size()));
        return ExitStatus::CommunicationFailed;
    }
    return options.sitePath.empty() || writeSite() ? ExitStatus::Good : ExitStatus::Configuration;
}

} // namespace

ExitStatus scanStations(const ScanOptions& options) {
    terminal::survivePipeEnd();
    stopsignal::install();
    return Scan(options).run();
}

} // namespace host
