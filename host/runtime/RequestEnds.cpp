#include "RequestEnds.h"

#include <utility>

namespace host {

using Kind = RequestEnd::Kind;

RequestEnds::RequestEnds(const Site& site, HalvexDriverCoreInterface& hostCore, ExchangeFeed& feed,
                         LineListener* lineListener)
    : core(hostCore), listener(lineListener) {
    for (const Channel& channel : site.channels) {
        Line& line = lines[channel.id];
        line.channel = &channel;
        line.observer =
            std::make_unique<LineObserver>(channel, feed, [this, &channel](bool second, int result) {
                if (listener != nullptr)
                    listener->lineOpened(channel, second, result);
            });
        for (const Rtu& rtu : channel.rtus)
            line.rtus[rtu.id].rtu = &rtu;
    }
}

LineObserver& RequestEnds::observerOf(int channelId) {
    return *lines.at(channelId).observer;
}

void RequestEnds::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    core.publishPoints(channelId, rtuId, updates);
}

void RequestEnds::publishChannelStatus(int channelId, const ChannelStatus& status) {
    core.publishChannelStatus(channelId, status);
}

// Who asks behind the core's call how the request ended shall find it.
void RequestEnds::publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) {
    const auto line = lines.find(channelId);
    if (line != lines.end()) {
        const auto requests = line->second.rtus.find(rtuId);
        if (requests != line->second.rtus.end())
            if (const std::optional<RequestEnd> end = endOf(line->second, requests->second, status))
                if (listener != nullptr)
                    listener->requestEnded(*end);
    }
    core.publishRtuStatus(channelId, rtuId, status);
}

// Nothing when the status counts no request more than the last one did.
std::optional<RequestEnd> RequestEnds::endOf(Line& line, Requests& requests, const RtuStatus& status) {
    bool isAnswered = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (status.requests <= requests.ended)
            return std::nullopt;
        requests.ended = status.requests;
        isAnswered = status.answers > std::exchange(requests.answers, status.answers);
    }
    RequestEnd end;
    end.channel = line.channel;
    end.rtu = requests.rtu;
    if (line.observer->isOnItsThread()) {
        const LineObserver::RequestTrace trace = line.observer->endRequest();
        if (trace.refusedWrite)
            end.exchange = trace.refusedWrite;
        else if (trace.hasExchange && !isAnswered)
            end.exchange = line.observer->lastExchange();
        end.kind = kindOf(trace, isAnswered, end.exchange);
        end.onSecondary = line.observer->onSecondary();
    } else {
        end.kind = isAnswered ? Kind::Answered : Kind::NotSent;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    remember(requests, end.kind);
    return end;
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
