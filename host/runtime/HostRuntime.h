#pragma once

#include "DriverPlugin.h"
#include "RequestEnds.h"
#include "site/Site.h"

#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <functional>
#include <memory>
#include <mutex>
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
    RtuStatus status;        // not connected when the last request found no answer
    quint64 attempts = 0;    // requests of the driver's that its polls and commands took
    bool wasRefused = false; // the last of its requests that failed
    quint64 refusals = 0;    // requests of the driver's that the controller refused
    quint64 silences = 0;    // those that found no answer in time
    quint64 overruns = 0;    // polls left out because the one before of their kind still waited
    RoundTripHistogram roundTrips = {};
};

// How a channel of the site stands.
struct ChannelFigures {
    const Channel* channel = nullptr;
    ChannelStatus status;
    LifeSign::Clock::time_point lastSign = {}; // of its thread's life
};

struct SiteFigures {
    std::vector<ChannelFigures> channels;
    std::vector<RtuFigures> rtus;
};

// A site at work: the plug-in, a channel per line, their threads.
// States: made, prepared, running, stopped (after stop, for good). Site and core outlive it.
// Threads: the main thread; from the end of prepare() to the beginning of stop(), figures and RTUs may be
// asked for on any.
class HostRuntime {
public:
    using LinkFactory = std::function<std::unique_ptr<CLink>(const LinkEnd&)>;

    // The listener may be null; it outlives the runtime as well.
    explicit HostRuntime(const Site& hostSite, HalvexDriverCoreInterface& hostCore,
                         LineListener* listener = nullptr);
    // With links of another making.
    HostRuntime(const Site& hostSite, HalvexDriverCoreInterface& hostCore, LineListener* listener,
                LinkFactory linkFactory);
    HostRuntime(const HostRuntime&) = delete;
    HostRuntime& operator=(const HostRuntime&) = delete;
    ~HostRuntime();

    // Before prepare(): polls are repeated, refused telegrams taken apart, silent stations left to rest, as
    // the site file says. Otherwise the driver's requests stand for themselves.
    void supervisePolls();

    // Loads the plug-in and makes every channel. Empty, or what went wrong; then there are none.
    std::string prepare(const std::string& pluginPath);
    // Starts every channel's thread. Empty, or which line has none; then those before it run until stop().
    std::string run();
    // Both.
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
    // While this is held, the driver may be given commands for the RTUs of a channel.
    std::unique_lock<std::mutex> holdPoints(int channelId) const;
    // Asks an RTU for an integrity poll. The result tells only whether the driver took the wish over.
    Halvex::DriverErrorResult requestPoll(int channelId, int rtuId) const;
    // Every telegram of every line and its answer.
    ExchangeFeed& exchanges() { return feed; }
    // How the last requests of the RTUs ended.
    const RequestEnds& requestEnds() const { return ends; }

private:
    struct RunningChannel {
        const Channel* configured = nullptr;
        std::unique_ptr<CChannel> channel;
        LinePoller* poller = nullptr; // where polls are supervised
    };

    std::string makeChannel(const Channel& configured);
    std::unique_ptr<CLink> makeLinkOf(const LinkEnd& end, LinkObserver& observer) const;
    void addRtu(CChannel& channel, const Rtu& rtu);
    void waitForThreads();
    const RunningChannel* find(int channelId) const;

    const Site& site;
    ExchangeFeed feed;
    RequestEnds ends; // the driver's core; outlives the channels, whose links it observes
    const LinkFactory makeEnd;
    DriverPlugin plugin; // outlives the channels, whose code is the plug-in's
    std::vector<RunningChannel> channels;
    bool isSupervised = false;
};

// The host's records for the driver. The number of a point in them is its position in its RTU, from 0 on.
RemoteTerminalUnit makeRtuRecord(const Rtu& rtu);
void addPoints(CRtu& target, const Rtu& rtu);
unsigned numberOf(const Rtu& rtu, const Point& point);
// The number of the hidden integer point that stands beside each float point of `rtu`, at the same register.
unsigned integerTwinOf(const Rtu& rtu, const Point& floatPoint);
// The number of the hidden status point that stands beside each pulse point whose off command is not its
// release: an off command to it is.
unsigned releaseTwinOf(const Rtu& rtu, const Point& pulsePoint);
std::unique_ptr<CLink> makeLink(const LinkEnd& end);

} // namespace host
