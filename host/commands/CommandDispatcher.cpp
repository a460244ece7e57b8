#include "CommandDispatcher.h"

#include "CommandPlan.h"
#include "DriverCall.h"
#include "plan/CommandTimeLimit.h"
#include "runtime/FailureText.h"
#include "runtime/StartThread.h"

#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/CRtu.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace host {

namespace {

// A channel's turn.
constexpr std::chrono::milliseconds betweenTries{10};

} // namespace

struct CommandDispatcher::Mailbox {
    void put(const CallEnd& end) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            endedCalls.push_back(end);
        }
        changed.notify_one();
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<CallEnd> endedCalls;
};

CommandDispatcher::CommandDispatcher(const Site& commandedSite, const FindRtu& findRtu,
                                     AskIfRefused askIfRefused, CallDriver driverCall)
    : CommandDispatcher(commandedSite, findRtu, std::move(askIfRefused), commandTimeLimit,
                        std::move(driverCall)) {}

CommandDispatcher::CommandDispatcher(const Site& commandedSite, const FindRtu& findRtu,
                                     AskIfRefused askIfRefused, const TimeLimit& timeLimit,
                                     CallDriver driverCall)
    : isRefused(std::move(askIfRefused)), callsDriver(std::move(driverCall)),
      mailbox(std::make_shared<Mailbox>()) {
    addLines(commandedSite, findRtu, timeLimit);
    thread = startThread("the commands", [this] { run(); });
}

CommandDispatcher::~CommandDispatcher() {
    stop();
}

void CommandDispatcher::addLines(const Site& site, const FindRtu& findRtu, const TimeLimit& timeLimit) {
    for (const Channel& channel : site.channels) {
        Line& line = lines[channel.id];
        line.timeLimit = timeLimit(channel);
        for (const Rtu& rtu : channel.rtus) {
            RtuLane& lane = lanes[{channel.id, rtu.id}];
            lane.channel = &channel;
            lane.configured = &rtu;
            lane.rtu = findRtu(channel.id, rtu.id);
            line.lanes.push_back(&lane);
        }
    }
}

std::string CommandDispatcher::submit(const Command& command, CommandDone done) {
    std::string refused = refusal(command);
    if (!refused.empty())
        return refused;
    RtuLane& lane = lanes.at({command.channelId, command.rtuId});
    Job job{planDriverCalls(*lane.configured, command.action), 0, std::move(done)};
    {
        const std::lock_guard<std::mutex> lock(mailbox->mutex);
        if (stopping)
            return nameOf(*lane.channel, lane.configured) + ": the host is ending and takes no more commands";
        if (lane.current && lane.waiting.size() >= mostWaiting)
            return nameOf(*lane.channel, lane.configured) + ": " + std::to_string(mostWaiting) +
                   " commands wait already; wait for their results, and check whether the controller answers";
        if (lane.current)
            lane.waiting.push_back(std::move(job));
        else
            lane.current = std::move(job);
    }
    mailbox->changed.notify_one();
    return {};
}

std::string CommandDispatcher::refusal(const Command& command) const {
    const auto line = lines.find(command.channelId);
    if (line == lines.end())
        return "there is no channel " + std::to_string(command.channelId) + "; check its id in the site file";
    const auto found = lanes.find({command.channelId, command.rtuId});
    if (found == lanes.end())
        return "channel " + std::to_string(command.channelId) + " has no RTU " +
               std::to_string(command.rtuId) + "; check its id in the site file";
    const RtuLane& lane = found->second;
    if (lane.rtu == nullptr)
        return nameOf(*lane.channel, lane.configured) + " is not running; check the messages of its line";
    return refusalOf(*lane.channel, *lane.configured, command.action);
}

void CommandDispatcher::abandonWaiting() {
    {
        const std::lock_guard<std::mutex> lock(mailbox->mutex);
        for (const auto& [channelId, line] : lines)
            for (RtuLane* const lane : line.lanes) {
                const bool isOnTheWay = line.call && line.call->lane == lane;
                if (lane->current && !isOnTheWay && lane->current->next == 0) {
                    abandoned.emplace_back(std::move(lane->current->done),
                                           CommandEnd{Result::ChannelError, false});
                    lane->current.reset();
                }
                abandonQueue(*lane, abandoned);
            }
    }
    mailbox->changed.notify_one();
}

void CommandDispatcher::stop() {
    {
        const std::lock_guard<std::mutex> lock(mailbox->mutex);
        stopping = true;
    }
    mailbox->changed.notify_one();
    if (thread.joinable())
        thread.join();
}

void CommandDispatcher::run() {
    std::unique_lock<std::mutex> lock(mailbox->mutex);
    for (;;) {
        const Work work = collectWork();
        const bool isLast = stopping;
        if (isLast || !work.results.empty() || !work.calls.empty()) {
            lock.unlock();
            for (const auto& [done, end] : work.results)
                done(end);
            for (const Call& call : work.calls)
                makeCall(call);
            if (isLast)
                return;
            lock.lock();
        } else if (const std::optional<Clock::time_point> deadline = nextDeadline()) {
            mailbox->changed.wait_until(lock, *deadline);
        } else {
            mailbox->changed.wait(lock);
        }
    }
}

CommandDispatcher::Work CommandDispatcher::collectWork() {
    Work work;
    work.results.swap(abandoned);
    takeEndedCalls(work);
    endOverdueCalls(work);
    if (stopping)
        abandonAll(work);
    else
        for (auto& [channelId, line] : lines)
            beginCall(line, work);
    return work;
}

void CommandDispatcher::takeEndedCalls(Work& work) {
    for (const CallEnd& ended : std::exchange(mailbox->endedCalls, {}))
        for (auto& [channelId, line] : lines)
            if (line.call && line.call->number == ended.number)
                endCall(line, ended.end, work);
}

void CommandDispatcher::endOverdueCalls(Work& work) {
    const Clock::time_point now = Clock::now();
    for (auto& [channelId, line] : lines)
        if (line.call && line.call->deadline <= now)
            endCall(line, {Result::TimeOut, true, false, line.call->isHeld}, work);
}

// Its job stays for another try, goes on to the next call, or ends.
void CommandDispatcher::endCall(Line& line, const CommandEnd& end, Work& work) {
    RtuLane& lane = *line.call->lane;
    line.call.reset();
    if (end.wasTaken)
        line.refusals.reset();
    else if (end.result == Result::ChannelError && isReopening(line))
        return;
    Job& job = *lane.current;
    const bool wasTaken = end.wasTaken || job.next > 0;
    ++job.next;
    if (end.result == Result::Success && job.next < job.calls.size())
        return;
    work.results.emplace_back(std::move(job.done),
                              CommandEnd{end.result, wasTaken, end.wasRefused, end.stillHeld});
    lane.current.reset();
    if (lane.waiting.empty())
        return;
    lane.current = std::move(lane.waiting.front());
    lane.waiting.pop_front();
}

// To be asked when a call was refused for want of a connection. While nobody tries, nobody knows: a refusal
// long after the last one is the first of a new row.
bool CommandDispatcher::isReopening(Line& line) {
    const Clock::time_point now = Clock::now();
    if (!line.refusals || now - line.refusals->last > longestReopening)
        line.refusals = Refusals{now, now};
    line.refusals->last = now;
    if (now - line.refusals->first >= longestReopening)
        return false;
    line.nextTry = now + betweenTries;
    return true;
}

void CommandDispatcher::beginCall(Line& line, Work& work) {
    if (line.call || Clock::now() < line.nextTry)
        return;
    for (std::size_t i = 0; i < line.lanes.size(); ++i) {
        RtuLane& lane = *line.lanes[(line.turn + i) % line.lanes.size()];
        if (!lane.current)
            continue;
        line.turn = (line.turn + i + 1) % line.lanes.size();
        line.call = CallOnTheWay{++lastCall, &lane, Clock::now() + line.timeLimit,
                                 std::make_shared<std::atomic<bool>>(true)};
        work.calls.push_back({lastCall, &lane, lane.current->calls[lane.current->next], line.call->isHeld});
        return;
    }
}

void CommandDispatcher::abandonQueue(RtuLane& lane, std::vector<Told>& results) {
    for (Job& job : lane.waiting)
        results.emplace_back(std::move(job.done), CommandEnd{Result::ChannelError, false});
    lane.waiting.clear();
}

void CommandDispatcher::abandonAll(Work& work) {
    for (auto& [channelId, line] : lines) {
        for (RtuLane* const lane : line.lanes) {
            const bool isOnTheWay = line.call && line.call->lane == lane;
            if (lane->current)
                work.results.emplace_back(
                    std::move(lane->current->done),
                    CommandEnd{Result::ChannelError, isOnTheWay || lane->current->next > 0});
            lane->current.reset();
            abandonQueue(*lane, work.results);
        }
        line.call.reset();
    }
}

std::optional<CommandDispatcher::Clock::time_point> CommandDispatcher::nextDeadline() const {
    std::optional<Clock::time_point> next;
    for (const auto& [channelId, line] : lines) {
        const bool isWaiting = std::any_of(line.lanes.begin(), line.lanes.end(),
                                           [](const RtuLane* lane) { return lane->current.has_value(); });
        if (!isWaiting)
            continue;
        const Clock::time_point deadline = line.call ? line.call->deadline : line.nextTry;
        if (!next || deadline < *next)
            next = deadline;
    }
    return next;
}

// The notice is there before the driver knows the reply: so it comes on the channel's thread as soon as the
// command has ended, while it is the last request. A command that the controller has refused is no success,
// whatever the driver says.
void CommandDispatcher::makeCall(const Call& call) {
    CRtu& rtu = *call.lane->rtu;
    auto* const reply = new CReply(rtu.GetChannel());
    reply->notify([box = mailbox, wasRefused = isRefused, number = call.number,
                   channelId = call.lane->channel->id, rtuId = call.lane->configured->id,
                   isHeld = call.isHeld](Result ended) {
        isHeld->store(false);
        // A channel error is no answer, so no refusal.
        const bool refused = ended != Result::ChannelError && wasRefused(channelId, rtuId);
        const bool isUntold = ended == Result::Success && refused;
        box->put({number, {isUntold ? Result::BadData : ended, true, refused}});
    });
    const auto result = static_cast<Result>(callsDriver(rtu, call.action, reply));
    if (result == Result::Success)
        return;
    reply->release();
    call.isHeld->store(false);
    mailbox->put({call.number, {result, false}});
}

} // namespace host
