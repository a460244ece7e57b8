#pragma once

#include "ScanReply.h"
#include "runtime/HostRuntime.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

namespace host {

// Asks stations of one line through the plug-in, each of them once, and hears what comes.
// States: made, open (after open); the line is closed with the object. Main thread, but for what the plug-in
// reports.
class StationScanner : private HalvexDriverCoreInterface, private LineListener {
public:
    using Progress = std::function<void(std::size_t asked)>;

    StationScanner(const ControllerLine& controllerLine, const std::vector<unsigned>& stations);
    ~StationScanner() override;

    ExchangeFeed& exchanges() { return runtime.exchanges(); }
    // Empty, or why the plug-in does not run.
    std::string open(const std::string& pluginPath);
    // Waits until every station was asked, the line has failed or a signal has come. `progress` is called
    // every now and then. The replies are those of the stations that were asked.
    LineScan scan(const Progress& progress);

private:
    void publishPoints(int, int, const QVector<PointUpdate>&) override {}
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}
    void requestEnded(const RequestEnd& end) override;
    void lineOpened(const Channel& channel, bool onSecondary, int result) override;

    void noteExchange(const Exchange& exchange);
    bool isOver();

    const ControllerLine line;
    const Site site;

    std::mutex mutex; // guards what follows
    std::condition_variable news;
    std::optional<Exchange> lastExchange; // of the request in progress
    std::map<int, ScanReply> replies;     // by the ids of their RTUs
    std::string lineFault;

    HostRuntime runtime;                              // ends before what it reports to
    const std::unique_ptr<ExchangeFeed::Watch> watch; // of the runtime's feed
};

} // namespace host
