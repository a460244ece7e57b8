#pragma once

#include "DriverPlugin.h"
#include "site/Site.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class CChannel;
class CLink;
class CRtu;
struct RemoteTerminalUnit;

namespace host {

// How an RTU of the site stands.
struct RtuFigures {
    const Channel* channel = nullptr;
    const Rtu* rtu = nullptr;
    RtuStatus status;
};

// How a channel of the site stands.
struct ChannelFigures {
    const Channel* channel = nullptr;
    ChannelStatus status;
};

struct SiteFigures {
    std::vector<ChannelFigures> channels;
    std::vector<RtuFigures> rtus;
};

// A site at work: the plug-in, a channel per line, their threads.
// States: made, running (after start), stopped (after stop, for good). Site and core outlive it.
// Threads: the main thread; while running, from the end of start() to the beginning of stop(), figures and
// RTUs may be asked for on any.
class HostRuntime {
public:
    using LinkFactory = std::function<std::unique_ptr<CLink>(const LinkEnd&)>;

    HostRuntime(const Site& hostSite, HalvexDriverCoreInterface& hostCore);
    // With links of its own making.
    HostRuntime(const Site& hostSite, HalvexDriverCoreInterface& hostCore, LinkFactory linkFactory);
    HostRuntime(const HostRuntime&) = delete;
    HostRuntime& operator=(const HostRuntime&) = delete;
    ~HostRuntime();

    // Loads the plug-in, makes and starts every channel. Empty, or what went wrong; then nothing runs.
    std::string start(const std::string& pluginPath);
    // Ends the channels' threads, closes and deletes the channels, ends the driver and unloads it. A request
    // in progress has the longest session time-out of its channel to end by itself.
    void stop();
    // The same, but gives no request the time to end: as if nothing had come in answer.
    void stopAtOnce();

    std::vector<RtuFigures> rtuFigures() const;
    std::vector<ChannelFigures> channelFigures() const;
    ChannelStatus channelStatus(const Channel& channel) const;
    // Null when there is none.
    CRtu* findRtu(int channelId, int rtuId) const;

private:
    struct RunningChannel {
        const Channel* configured = nullptr;
        std::unique_ptr<CChannel> channel;
    };

    std::string makeChannel(const Channel& configured);
    void addRtu(CChannel& channel, const Rtu& rtu);
    void waitForThreads();
    const RunningChannel* find(int channelId) const;

    const Site& site;
    HalvexDriverCoreInterface& core;
    const LinkFactory makeEnd;
    DriverPlugin plugin; // outlives the channels, whose code is the plug-in's
    std::vector<RunningChannel> channels;
};

// The host's records for the driver. The number of a point in them is its position in its RTU, from 0 on.
RemoteTerminalUnit makeRtuRecord(const Rtu& rtu);
void addPoints(CRtu& target, const Rtu& rtu);
unsigned numberOf(const Rtu& rtu, const Point& point);
// The number of the hidden integer point that stands beside each float point of `rtu`, at the same register.
unsigned integerTwinOf(const Rtu& rtu, const Point& floatPoint);
std::unique_ptr<CLink> makeLink(const LinkEnd& end);

} // namespace host
