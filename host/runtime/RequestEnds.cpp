#include "RequestEnds.h"

#include "telegram/RequestTelegram.h"

#include <algorithm>

namespace host {

using Kind = RequestEnd::Kind;

RequestEnds::RequestEnds(const Site& site, HalvexDriverCoreInterface& hostCore, ExchangeFeed& feed,
                         LineListener* lineListener)
    : core(hostCore), listener(lineListener) {
    for (const Channel& channel : site.channels) {
        Line& line = lines[channel.id];
        line.channel = &channel;
        line.observer =
            std::make_unique<LineObserver>(channel, feed, [this, &channel, &line](bool second, int result) {
                if (line.poller != nullptr)
                    line.poller->lineOpened(second, result);
                if (listener != nullptr)
                    listener->lineOpened(channel, second, result);
            });
        for (const Rtu& rtu : channel.rtus) {
            Requests& requests = line.rtus[rtu.id];
            requests.rtu = &rtu;
            line.counted[rtu.id].requests = &requests;
        }
    }
}

LinePoller& RequestEnds::makePoller(const Channel& channel, CChannel& driverChannel) {
    Line& line = lines.at(channel.id);
    const auto pollEnded = [this, &line](const RequestEnd& end) {
        Requests& requests = line.rtus.at(end.rtu->id);
        countEnd(end, requests.figures);
        tell(requests, end);
    };
    const auto refusalsFound = [this, &channel](const Rtu& rtu, const RefusalNews& news) {
        if (listener != nullptr)
            listener->refusalsFound(channel, rtu, news);
    };
    const auto turnTaken = [&sign = line.observer->lifeSign()] { sign.give(LifeSign::Clock::now()); };
    line.poller = std::make_unique<LinePoller>(channel, driverChannel, core,
                                               LinePoller::Listener{pollEnded, refusalsFound, turnTaken});
    for (const int id : line.poller->driverRtuIds())
        line.counted[id].requests = &line.rtus.at(line.poller->configuredOf(id)->id);
    return *line.poller;
}

LineObserver& RequestEnds::observerOf(int channelId) {
    return *lines.at(channelId).observer;
}

void RequestEnds::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    const auto line = lines.find(channelId);
    const Rtu* const polled =
        line == lines.end() || !line->second.poller ? nullptr : line->second.poller->configuredOf(rtuId);
    if (polled == nullptr)
        core.publishPoints(channelId, rtuId, updates);
    else if (!updates.isEmpty() && updates.front().quality == PointQuality::Good)
        core.publishPoints(channelId, polled->id, updates);
}

void RequestEnds::publishChannelStatus(int channelId, const ChannelStatus& status) {
    core.publishChannelStatus(channelId, status);
}

// Who asks behind the core's call how the request ended shall find it.
void RequestEnds::publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) {
    const auto line = lines.find(channelId);
    if (line != lines.end()) {
        const auto counted = line->second.counted.find(rtuId);
        if (counted != line->second.counted.end())
            if (const std::optional<RequestEnd> end = endOf(line->second, counted->second, status))
                tellEnd(line->second, rtuId, *end, status);
        if (isSecond(line->second, rtuId))
            return;
    }
    core.publishRtuStatus(channelId, rtuId, status);
}

// Of the host's own making, which nobody else knows.
bool RequestEnds::isSecond(const Line& line, int driverRtuId) {
    const Rtu* const polled = line.poller == nullptr ? nullptr : line.poller->configuredOf(driverRtuId);
    return polled != nullptr && polled->id != driverRtuId;
}

// Nothing when the status counts no request more than the last one did.
std::optional<RequestEnd> RequestEnds::endOf(Line& line, Counted& counted, const RtuStatus& status) {
    std::optional<RequestEnd> ended;
    bool isAnswered = false;
    bool isTimeOut = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (status.requests <= counted.status.requests)
            return ended;
        isAnswered = status.answers > counted.status.answers;
        isTimeOut = status.timeOuts > counted.status.timeOuts;
        counted.status = status;
    }
    RequestEnd& end = ended.emplace();
    end.isTimeOut = isTimeOut;
    end.channel = line.channel;
    end.rtu = counted.requests->rtu;
    if (!line.observer->isOnItsThread()) {
        end.kind = isAnswered ? Kind::Answered : Kind::NotSent;
        return ended;
    }
    LineObserver::RequestTrace trace = line.observer->endRequest();
    if (trace.refusedWrite)
        end.exchange = trace.refusedWrite;
    else if (trace.hasExchange && !isAnswered)
        end.exchange = line.observer->lastExchange();
    end.kind = kindOf(trace, isAnswered, end.exchange);
    countTelegrams(trace, end.kind, *counted.requests);
    end.hasTelegram = trace.hasExchange;
    if (isWriteTelegram(line.observer->framing(), trace.unsent))
        end.unsentWrite = std::move(trace.unsent);
    end.wasHeard = trace.wasHeard;
    end.onSecondary = line.observer->onSecondary();
    return ended;
}

void RequestEnds::tell(Requests& requests, const RequestEnd& end) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        remember(requests, end.kind);
    }
    if (listener != nullptr)
        listener->requestEnded(end);
}

// What becomes of a read is the poller's to say. A command that was refused offline may end on another
// thread.
void RequestEnds::tellEnd(Line& line, int driverRtuId, const RequestEnd& end, const RtuStatus& status) {
    Requests& requests = *line.counted.at(driverRtuId).requests;
    if (line.poller == nullptr || line.poller->configuredOf(driverRtuId) == nullptr) {
        tell(requests, end);
        return;
    }
    const LineObserver& observer = *line.observer;
    const bool isOnItsThread = observer.isOnItsThread();
    const bool isCommand = !isOnItsThread || !end.unsentWrite.empty() ||
                           (end.hasTelegram && isWriteTelegram(observer.framing(), observer.lastTelegram()));
    if (end.hasTelegram || end.kind != Kind::Answered)
        countAttempt(requests.figures, status);
    if (!isCommand) {
        line.poller->readEnded(driverRtuId, end, end.hasTelegram ? lastRead(observer) : std::nullopt);
        return;
    }
    countEnd(end, requests.figures);
    tell(requests, end);
    if (isOnItsThread)
        line.poller->commandEnded(driverRtuId, end);
}

void RequestEnds::countTelegrams(const LineObserver::RequestTrace& trace, Kind kind, Requests& requests) {
    const std::lock_guard<std::mutex> lock(mutex);
    requests.telegrams.roundTrips.add(trace.roundTrips);
    if (kind == Kind::Refused)
        ++requests.telegrams.refusals;
    else if (kind == Kind::NoAnswer)
        ++requests.telegrams.silences;
}

void RequestEnds::countAttempt(Figures& figures, const RtuStatus& status) {
    const std::lock_guard<std::mutex> lock(mutex);
    ++figures.attempts;
    figures.status.lastRoundTrip = status.lastRoundTrip;
    figures.status.slowestRoundTrip = std::max(figures.status.slowestRoundTrip, status.slowestRoundTrip);
}

void RequestEnds::countEnd(const RequestEnd& end, Figures& figures) {
    const std::lock_guard<std::mutex> lock(mutex);
    RtuStatus& status = figures.status;
    ++status.requests;
    if (end.kind == Kind::Answered)
        ++status.answers;
    else
        ++(end.isTimeOut ? status.timeOuts : status.errors);
}

std::optional<ReadTelegram> RequestEnds::lastRead(const LineObserver& observer) {
    const std::optional<RequestTelegram> request = readRequest(observer.framing(), observer.lastTelegram());
    if (!request)
        return std::nullopt;
    return ReadTelegram{request->media, request->first, static_cast<unsigned>(request->count)};
}

std::optional<RequestEnds::Figures> RequestEnds::figuresOf(int channelId, int rtuId) const {
    const auto line = lines.find(channelId);
    if (line == lines.end() || !line->second.poller || line->second.poller->configuredOf(rtuId) == nullptr)
        return std::nullopt;
    const std::lock_guard<std::mutex> lock(mutex);
    return line->second.rtus.at(rtuId).figures;
}

RequestEnds::TelegramFigures RequestEnds::telegramFiguresOf(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const Requests* const requests = find(channelId, rtuId);
    return requests == nullptr ? TelegramFigures() : requests->telegrams;
}

quint64 RequestEnds::overrunsOf(int channelId, int rtuId) const {
    const auto line = lines.find(channelId);
    return line == lines.end() || !line->second.poller ? 0 : line->second.poller->overrunsOf(rtuId);
}

RequestEnd::Kind RequestEnds::kindOf(const LineObserver::RequestTrace& trace, bool isAnswered,
                                     const std::optional<Exchange>& last) {
    if (trace.refusedWrite)
        return Kind::Refused;
    if (isAnswered)
        return Kind::Answered;
    if (trace.hasLineFailed || !last)
        return Kind::LineFailed;
    switch (last->answer) {
    case Answer::Silent:
        return Kind::NoAnswer;
    case Answer::Refused:
        return Kind::Refused;
    case Answer::Good: // the driver asks more of an answer, or was ended in the middle
    case Answer::Damaged:
    case Answer::Foreign:
        break;
    }
    return Kind::BadAnswer;
}

void RequestEnds::remember(Requests& requests, Kind kind) {
    requests.isSilent = kind == Kind::NoAnswer || kind == Kind::LineFailed || kind == Kind::NotSent;
    requests.wasLastRefused = kind == Kind::Refused;
    if (kind != Kind::Answered)
        requests.wasRefused = kind == Kind::Refused;
}

const RequestEnds::Requests* RequestEnds::find(int channelId, int rtuId) const {
    const auto line = lines.find(channelId);
    if (line == lines.end())
        return nullptr;
    const auto requests = line->second.rtus.find(rtuId);
    return requests == line->second.rtus.end() ? nullptr : &requests->second;
}

const LifeSign& RequestEnds::lifeSignOf(int channelId) const {
    return lines.at(channelId).observer->lifeSign();
}

bool RequestEnds::wasRefused(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const Requests* const requests = find(channelId, rtuId);
    return requests != nullptr && requests->wasRefused;
}

bool RequestEnds::wasLastRequestRefused(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const Requests* const requests = find(channelId, rtuId);
    return requests != nullptr && requests->wasLastRefused;
}

bool RequestEnds::isSilent(int channelId, int rtuId) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const Requests* const requests = find(channelId, rtuId);
    return requests != nullptr && requests->isSilent;
}

} // namespace host
