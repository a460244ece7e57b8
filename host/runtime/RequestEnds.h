#pragma once

#include "LineObserver.h"
#include "RequestEnd.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace host {

// Stands between the driver and the host's core: passes all on, and makes of each RTU status that counts one
// more request, joined with what has passed the line, the end of that request. Remembers how the last
// requests of each RTU ended.
// Threads: the core's operations on the driver's; what asks for the last requests on any. Site, core, feed
// and listener outlive it; it outlives the driver and its links.
class RequestEnds : public HalvexDriverCoreInterface {
public:
    // `lineListener` may be null.
    RequestEnds(const Site& site, HalvexDriverCoreInterface& hostCore, ExchangeFeed& feed,
                LineListener* lineListener);
    ~RequestEnds() override = default;

    // The observer of a channel's links. The channel is one of the site's.
    LineObserver& observerOf(int channelId);

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int channelId, const ChannelStatus& status) override;

    // Whether the last request of an RTU that failed was refused by the controller. Answers to other requests
    // do not change that: one kind of poll may be refused for ever while the others are answered.
    bool wasRefused(int channelId, int rtuId) const;
    // Whether the very last request of an RTU was refused, also where the driver takes it for done. Asked on
    // the line's thread when a request has just ended, it is that one.
    bool wasLastRequestRefused(int channelId, int rtuId) const;
    // Whether the last request of an RTU found no answer. The RTU's own connected flag does not tell: each
    // time the line is opened anew it is set before anything has answered.
    bool isSilent(int channelId, int rtuId) const;

private:
    struct Requests {
        const Rtu* rtu = nullptr;
        quint64 ended = 0; // counted so far
        quint64 answers = 0;
        bool isSilent = false;
        bool wasRefused = false;     // the last one that failed
        bool wasLastRefused = false; // the very last one
    };
    struct Line {
        const Channel* channel = nullptr;
        std::unique_ptr<LineObserver> observer;
        std::map<int, Requests> rtus; // by id
    };

    std::optional<RequestEnd> endOf(Line& line, Requests& requests, const RtuStatus& status);
    static RequestEnd::Kind kindOf(const LineObserver::RequestTrace& trace, bool isAnswered,
                                   const std::optional<Exchange>& last);
    static void remember(Requests& requests, RequestEnd::Kind kind);
    const Requests* find(int channelId, int rtuId) const;

    HalvexDriverCoreInterface& core;
    LineListener* const listener;
    std::map<int, Line> lines; // by id; fixed but for the requests
    mutable std::mutex mutex;  // guards the requests
};

} // namespace host
