#include "HostRuntime.h"

#include "FailureText.h"
#include "StartThread.h"

#include <HalvexAbstractDriver/DriverPluginInterface.h>
#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include <QElapsedTimer>

#include <algorithm>
#include <map>

namespace host {

namespace {

int commTypeCode(LineType type) {
    using Halvex::CommTypeCode;
    return static_cast<int>(type == LineType::Serial ? CommTypeCode::SBusSerial : CommTypeCode::SBusEthernet);
}

std::chrono::milliseconds longestTimeOut(const Channel& channel) {
    std::chrono::milliseconds longest{0};
    for (const Rtu& rtu : channel.rtus)
        longest = std::max(longest, rtu.timeout);
    return longest;
}

} // namespace

HostRuntime::HostRuntime(const Site& hostSite, HalvexDriverCoreInterface& hostCore, LineListener* listener)
    : HostRuntime(hostSite, hostCore, listener, makeLink) {}

HostRuntime::HostRuntime(const Site& hostSite, HalvexDriverCoreInterface& hostCore, LineListener* listener,
                         LinkFactory linkFactory)
    : site(hostSite), ends(hostSite, hostCore, feed, listener), makeEnd(std::move(linkFactory)) {}

HostRuntime::~HostRuntime() {
    stop();
}

void HostRuntime::supervisePolls() {
    isSupervised = true;
}

std::string HostRuntime::start(const std::string& pluginPath) {
    std::string fault = prepare(pluginPath);
    if (!fault.empty())
        return fault;
    fault = run();
    if (!fault.empty())
        stopAtOnce();
    return fault;
}

std::string HostRuntime::run() {
    for (const RunningChannel& running : channels)
        if (!running.channel->StartThread())
            return nameOf(*running.configured, nullptr) + ": " + threadRefusal("its line");
    return {};
}

std::string HostRuntime::prepare(const std::string& pluginPath) {
    std::string fault = plugin.load(pluginPath);
    if (!fault.empty())
        return fault;
    plugin.driver()->initialize(&ends);
    plugin.driver()->loadTranslator();
    for (const Channel& configured : site.channels) {
        fault = makeChannel(configured);
        if (!fault.empty()) {
            stop();
            return fault;
        }
    }
    return {};
}

std::string HostRuntime::makeChannel(const Channel& configured) {
    const std::string who = nameOf(configured, nullptr);
    const int type = commTypeCode(configured.type);
    if (!plugin.driver()->isAvailable() || !plugin.driver()->isSupportedCommType(type))
        return who + ": the plug-in does not serve " + toText(configured.type);
    std::unique_ptr<CChannel> channel(plugin.driver()->createChannel(configured.id));
    if (!channel)
        return who + ": the plug-in made no channel";
    channel->SetCommType(type);
    LineObserver& observer = ends.observerOf(configured.id);
    channel->SetLinks(makeLinkOf(configured.primary, observer.primaryEnd()),
                      configured.secondary ? makeLinkOf(*configured.secondary, observer.secondaryEnd())
                                           : nullptr);
    for (const Rtu& rtu : configured.rtus)
        addRtu(*channel, rtu);
    LinePoller* const poller = isSupervised ? &ends.makePoller(configured, *channel) : nullptr;
    channel->SetPollTaker(poller);
    channels.push_back({&configured, std::move(channel), poller});
    if (!channels.back().channel->InitChannel())
        return who + ": the plug-in cannot prepare the line";
    if (poller != nullptr)
        poller->prepare();
    return {};
}

std::unique_ptr<CLink> HostRuntime::makeLinkOf(const LinkEnd& end, LinkObserver& observer) const {
    std::unique_ptr<CLink> link = makeEnd(end);
    link->setObserver(&observer);
    return link;
}

void HostRuntime::addRtu(CChannel& channel, const Rtu& rtu) {
    CRtu* const made = channel.AddRtu(makeRtuRecord(rtu));
    // The plug-in polls every RTU when its line connects. One without points has nothing to poll.
    if (made != nullptr && rtu.enabled && !isSupervised)
        addPoints(*made, rtu);
}

void HostRuntime::stop() {
    for (const RunningChannel& running : channels)
        running.channel->SetShutdown(true);
    waitForThreads();
    for (const RunningChannel& running : channels)
        running.channel->CloseChannel();
    channels.clear();
    plugin.unload();
}

void HostRuntime::stopAtOnce() {
    for (const RunningChannel& running : channels) {
        running.channel->SetShutdown(true);
        running.channel->InterruptLinks();
    }
    stop();
}

// A line that needs longer than its own longest time-out, for many telegrams of one request or because it is
// drained, has its waits cut short. Lines with short time-outs come first, so that no line waits for another.
void HostRuntime::waitForThreads() {
    std::multimap<std::chrono::milliseconds, CChannel*> byTimeOut;
    QElapsedTimer elapsed;
    elapsed.start();
    for (const RunningChannel& running : channels) {
        // No request is in progress. What may be is the look-up of a host name, behind which the line sleeps.
        if (!running.channel->IsConnect())
            running.channel->InterruptLinks();
        byTimeOut.emplace(longestTimeOut(*running.configured), running.channel.get());
    }
    for (const auto& [timeOut, channel] : byTimeOut) {
        const qint64 left = std::max<qint64>(0, timeOut.count() - elapsed.elapsed());
        if (!channel->wait(static_cast<unsigned long>(left)))
            channel->InterruptLinks();
    }
    for (const RunningChannel& running : channels)
        running.channel->wait();
}

std::vector<RtuFigures> HostRuntime::rtuFigures() const {
    std::vector<RtuFigures> figures;
    for (const RunningChannel& running : channels)
        for (const Rtu& rtu : running.configured->rtus)
            if (const CRtu* const made = running.channel->GetRtuMap().value(rtu.id)) {
                const int channelId = running.configured->id;
                RtuFigures one;
                one.channel = running.configured;
                one.rtu = &rtu;
                one.status = made->GetRtuStatus();
                one.attempts = one.status.requests;
                one.wasRefused = ends.wasRefused(channelId, rtu.id);
                const RequestEnds::TelegramFigures telegrams = ends.telegramFiguresOf(channelId, rtu.id);
                one.refusals = telegrams.refusals;
                one.silences = telegrams.silences;
                one.roundTrips = telegrams.roundTrips;
                one.overruns = ends.overrunsOf(channelId, rtu.id);
                if (const auto supervised = ends.figuresOf(channelId, rtu.id)) {
                    one.status = supervised->status;
                    one.status.connected = running.channel->IsConnect() && one.status.answers > 0;
                    one.attempts = supervised->attempts;
                }
                one.status.connected = one.status.connected && !ends.isSilent(channelId, rtu.id);
                figures.push_back(one);
            }
    return figures;
}

std::vector<ChannelFigures> HostRuntime::channelFigures() const {
    std::vector<ChannelFigures> figures;
    for (const RunningChannel& running : channels)
        figures.push_back({running.configured, running.channel->GetChannelStatus(),
                           ends.lifeSignOf(running.configured->id).lastGiven()});
    return figures;
}

ChannelStatus HostRuntime::channelStatus(const Channel& channel) const {
    const RunningChannel* const running = find(channel.id);
    return running == nullptr ? ChannelStatus() : running->channel->GetChannelStatus();
}

CRtu* HostRuntime::findRtu(int channelId, int rtuId) const {
    const RunningChannel* const running = find(channelId);
    return running == nullptr ? nullptr : running->channel->GetRtuMap().value(rtuId);
}

std::unique_lock<std::mutex> HostRuntime::holdPoints(int channelId) const {
    const RunningChannel* const running = find(channelId);
    return running == nullptr || running->poller == nullptr ? std::unique_lock<std::mutex>()
                                                            : running->poller->holdPoints();
}

Halvex::DriverErrorResult HostRuntime::requestPoll(int channelId, int rtuId) const {
    CRtu* const rtu = findRtu(channelId, rtuId);
    if (rtu == nullptr)
        return Halvex::DriverErrorResult::RtuNotFound;
    // The driver would keep the wish until the line is open, and then poll anyway.
    if (!rtu->GetChannel()->IsConnect())
        return Halvex::DriverErrorResult::ChannelError;
    if (const RunningChannel* const running = find(channelId);
        running->poller != nullptr && running->poller->wish(rtuId))
        return Halvex::DriverErrorResult::Success;
    // Without a reply: the driver drops a wish that equals a pending one, and its reply would never come.
    return static_cast<Halvex::DriverErrorResult>(
        rtu->RequestPoll(static_cast<int>(Halvex::PollKind::Integrity), nullptr));
}

const HostRuntime::RunningChannel* HostRuntime::find(int channelId) const {
    const auto found =
        std::find_if(channels.begin(), channels.end(), [channelId](const RunningChannel& running) {
            return running.configured->id == channelId;
        });
    return found == channels.end() ? nullptr : &*found;
}

} // namespace host
